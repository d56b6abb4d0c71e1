// What the threads of this process do, as the system tells it.
#pragma once

#include <QFile>

#include <sys/syscall.h>
#include <unistd.h>

inline long ownThreadId()
{
    return syscall(SYS_gettid);
}

// 'S' for one that sleeps; '?' where the system doesn't tell.
inline char stateOfThread(long id)
{
    QFile file(QStringLiteral("/proc/self/task/%1/stat").arg(id));
    if (!file.open(QIODevice::ReadOnly)) {
        return '?';
    }
    const QByteArray text = file.readAll();
    return text.at(text.lastIndexOf(')') + 2);
}
