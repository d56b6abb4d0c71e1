#include "setup/config_kind.h"

#include <cmath>

QString nameOf(ConfigKind kind)
{
    switch (kind) {
    case ConfigKind::Whole:
        return QStringLiteral("whole number");
    case ConfigKind::Real:
        return QStringLiteral("number");
    case ConfigKind::Text:
        break;
    }
    return QStringLiteral("text in quotes");
}

bool fitsConfigKind(const QString& value, ConfigKind kind)
{
    bool fits = false;
    switch (kind) {
    case ConfigKind::Whole: {
        value.toInt(&fits);
        return fits;
    }
    case ConfigKind::Real: {
        const double number = value.toDouble(&fits);
        return fits && std::isfinite(number);
    }
    case ConfigKind::Text:
        break;
    }
    return value.size() >= 2 && value.startsWith(QLatin1Char('"')) &&
           value.endsWith(QLatin1Char('"'));
}
