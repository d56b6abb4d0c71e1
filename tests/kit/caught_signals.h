// Which signals another process handles by itself.
#pragma once

#include "kit/file_content.h"

inline bool catches(qint64 process, int signal)
{
    const QByteArray text = contentOf(QStringLiteral("/proc/%1/status").arg(process));
    const int at = text.indexOf("SigCgt:");
    const QByteArray mask = text.mid(at + 7).simplified().split(' ').value(0);
    return at >= 0 && ((mask.toULongLong(nullptr, 16) >> (signal - 1)) & 1U) != 0;
}
