// One "key = value" line of the configuration file.
#pragma once

#include <QString>

inline QString configLine(const char* key, const QString& value)
{
    return QLatin1String(key) + QLatin1String(" = ") + value + QLatin1Char('\n');
}
