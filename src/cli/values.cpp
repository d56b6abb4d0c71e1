#include "cli/values.h"

#include "cli/exit_status.h"

#include <cmath>

namespace {

[[noreturn]] void refuse(const QString& text, const QString& what, const QString& wanted)
{
    failUsage(QStringLiteral("%1 takes %2, not \"%3\"").arg(what, wanted, text));
}

QString spanOf(const QString& lowest, const QString& highest, const char* unit)
{
    const QString span = QStringLiteral("a number from %1 to %2").arg(lowest, highest);
    const QLatin1String itsUnit(unit);
    return itsUnit.isEmpty() ? span : span + QLatin1Char(' ') + itsUnit;
}

} // namespace

double numberOf(const QString& text, const QString& what, const Range& range)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value) || value < range.lowest || value > range.highest) {
        refuse(text, what,
               spanOf(QString::number(range.lowest), QString::number(range.highest), range.unit));
    }
    return value;
}

int wholeNumberOf(const QString& text, const QString& what, int lowest, int highest)
{
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    if (!isNumber || value < lowest || value > highest) {
        refuse(text, what,
               "a whole number from " + QString::number(lowest) + " to " +
                   QString::number(highest));
    }
    return value;
}

double thresholdOf(const QString& text)
{
    return numberOf(text, "--threshold", {-300.0, 300.0, "dB"});
}

double numberOr(const Arguments& arguments, const QString& option, const Range& range,
                double otherwise)
{
    return arguments.has(option) ? numberOf(arguments.value(option), "--" + option, range)
                                 : otherwise;
}

int wholeNumberOr(const Arguments& arguments, const QString& option, int lowest, int highest,
                  int otherwise)
{
    return arguments.has(option)
               ? wholeNumberOf(arguments.value(option), "--" + option, lowest, highest)
               : otherwise;
}
