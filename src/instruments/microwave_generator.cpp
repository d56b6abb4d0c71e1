#include "instruments/microwave_generator.h"

#include "instruments/config_line.h"

QString MicrowaveGenerator::configSection() const
{
    return commonConfigLines(QStringLiteral("Generator2")) +
           configLine("Level", QString::number(level)) +
           configLine("Atten", QString::number(attenuation)) +
           configLine("IF Input", QString::number(int{ifInput})) + QLatin1Char('\n');
}
