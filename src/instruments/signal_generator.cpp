#include "instruments/signal_generator.h"

#include "instruments/config_line.h"

QString SignalGenerator::configSection() const
{
    return commonConfigLines(QStringLiteral("Generator1")) +
           configLine("Level", QString::number(level)) + QLatin1Char('\n');
}
