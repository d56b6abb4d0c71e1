// SIGINT, SIGTERM and SIGHUP (the terminal closed) as a Qt signal and as a number to ask for, so
// that a program ends in its own order: through its event loop, or between two steps of its work. A
// SIGHUP that the starter ignores stays ignored.
#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

class StopSignals : public QObject
{
    Q_OBJECT

public:
    // What the second one does; a second SIGHUP does nothing.
    enum class Second { IsLikeTheFirst, EndsTheProcess };

    // At most one in a process at a time. Main thread.
    explicit StopSignals(Second second = Second::IsLikeTheFirst, QObject* parent = nullptr);
    ~StopSignals() override;
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    // The number of the first one that came since an object was made, 0 before. Any thread.
    static int received();

signals:
    void requested();

private:
    void takeByte();

    int ends[2] = {-1, -1}; // the handler writes into the first, the notifier reads the second
    std::unique_ptr<QSocketNotifier> notifier;
};
