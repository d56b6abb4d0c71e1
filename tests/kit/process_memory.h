// How much memory the test itself takes, where the system tells.
#pragma once

#include <QFile>

// The most that was resident since the start or the last forgetMostMemory(), in kilobytes; 0 where
// it is unknown.
inline qint64 mostMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmHWM:")) {
            return line.mid(6).replace("kB", "").trimmed().toLongLong();
        }
    }
    return 0;
}

// Counts from what is resident now; false where the system can't.
inline bool forgetMostMemory()
{
    QFile reset(QStringLiteral("/proc/self/clear_refs"));
    return reset.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && reset.write("5") == 1;
}
