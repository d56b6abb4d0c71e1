// What the threads of a process do, as the system tells it.
#pragma once

#include <QDir>
#include <QFile>

#include <sys/syscall.h>
#include <unistd.h>

inline long ownThreadId()
{
    return syscall(SYS_gettid);
}

// The fields behind the name of a thread, which may hold anything; none where the system doesn't
// tell.
inline QByteArrayList threadFields(const QString& process, long id)
{
    QFile file(QStringLiteral("/proc/%1/task/%2/stat").arg(process).arg(id));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray text = file.readAll();
    return text.mid(text.lastIndexOf(')') + 2).split(' ');
}

// 'S' for a thread of this process that sleeps; '?' where the system doesn't tell.
inline char stateOfThread(long id)
{
    return threadFields(QStringLiteral("self"), id).value(0, "?").at(0);
}

// Tells whether what this process has begun since it was made has fallen asleep.
class NewThreads
{
public:
    bool areAsleep() const
    {
        const QStringList all = ids();
        int asleep = 0;
        for (const QString& id : all) {
            if (!before.contains(id)) {
                if (stateOfThread(id.toLong()) != 'S') {
                    return false;
                }
                ++asleep;
            }
        }
        return asleep > 0;
    }

private:
    static QStringList ids()
    {
        return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    }

    const QStringList before = ids();
};

// Processor time of a thread of another process; 0 where the system doesn't tell.
inline double secondsOfThread(qint64 process, long id)
{
    const QByteArrayList fields = threadFields(QString::number(process), id);
    const double ticks = fields.value(11).toDouble() + fields.value(12).toDouble();
    return ticks / double(sysconf(_SC_CLK_TCK));
}
