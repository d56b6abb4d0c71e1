// How many threads this process has.
#pragma once

#include <QDir>

// 0 where the system doesn't tell.
inline int threadCount()
{
    return static_cast<int>(QDir(QStringLiteral("/proc/self/task"))
                                .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
                                .size());
}
