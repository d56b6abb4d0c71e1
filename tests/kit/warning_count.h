// How many warnings were logged while it lived. They are shown as before. One at a time.
#pragma once

#include <QtGlobal>

#include <atomic>

class WarningCount
{
public:
    WarningCount() : former(qInstallMessageHandler(note))
    {
        formerHandler = former;
        count = 0;
    }
    ~WarningCount() { qInstallMessageHandler(former); }
    WarningCount(const WarningCount&) = delete;
    WarningCount& operator=(const WarningCount&) = delete;

    int value() const { return count; }

private:
    static void note(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        if (type == QtWarningMsg || type == QtCriticalMsg) {
            ++count;
        }
        formerHandler(type, context, text);
    }

    static inline std::atomic<int> count{0};
    static inline QtMessageHandler formerHandler = nullptr;

    QtMessageHandler former;
};
