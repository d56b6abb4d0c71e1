#include "remote/analyzer_commands.h"

#include <cmath>

void AnalyzerCommands::sendNumber(const char* format, double value)
{
    send(QString::asprintf(format, value));
}

void AnalyzerCommands::setCenterFrequency(double hz)
{
    sendNumber("FREQ:CENT %0.11f", hz);
}

void AnalyzerCommands::setSpan(double hz)
{
    sendNumber("FREQ:SPAN %0.11f", hz);
}

void AnalyzerCommands::setReferenceLevel(double dbm)
{
    sendNumber("DISP:WIND1:TRAC:Y:RLEV %0.3f", dbm);
}

void AnalyzerCommands::setAttenuation(double db)
{
    // Deliberate: the line feed belongs to the command; saved traffic logs show it.
    sendNumber("INP:ATT %f\n", db);
}

void AnalyzerCommands::setAutoAttenuation(bool on)
{
    send(on ? QStringLiteral("INP:ATT:AUTO ON") : QStringLiteral("INP:ATT:AUTO OFF"));
}

void AnalyzerCommands::setResolutionBandwidth(double hz)
{
    if (hz > 0) {
        sendNumber("BAND:RES %0.11f", hz);
    } else {
        send(QStringLiteral("BAND:RES:AUTO ON"));
    }
}

void AnalyzerCommands::setVideoBandwidth(double hz)
{
    if (hz > 0) {
        sendNumber("BAND:VID %0.11f", hz);
    } else {
        send(QStringLiteral("BAND:VID:AUTO ON"));
    }
}

void AnalyzerCommands::setSweepTime(double s)
{
    if (s > 0) {
        sendNumber("SWE:TIME %f", s);
    } else {
        send(QStringLiteral("SWE:TIME:AUTO ON"));
    }
}

void AnalyzerCommands::setChannels(double bandwidth, double spacing)
{
    sendNumber("POW:ACH:BWID %0.11f", bandwidth);
    sendNumber("POW:ACH:BWID:ACH %0.11f", bandwidth);
    sendNumber("POW:ACH:SPAC %0.11f", spacing);
}

void AnalyzerCommands::presetChannelPower(double level)
{
    send(QStringLiteral("SENS:DET1:FUNC RMS"));
    send(QStringLiteral(":CALC1:MARK1:FUNC:POW:SEL ACP"));
    send(QStringLiteral(":SENS1:POW:ACH:ACP 1"));
    send(QStringLiteral(":CALC1:MARK1:FUNC:POW:RES:PHZ OFF;*WAI"));
    send(QStringLiteral("POW:ACH:MODE REL"));
    setAutoAttenuation(true);
    setResolutionBandwidth(0.0);
    setVideoBandwidth(0.0);
    setSweepTime(1.0);
    setReferenceLevel(level);
    goToLocal();
}

QStringList AnalyzerCommands::sweepAndAsk()
{
    send(QStringLiteral("INIT:CONT OFF"));
    send(QStringLiteral("INIT;*WAI"));
    return query(QStringLiteral("*CLS;:CALC1:MARK1:FUNC:POW:RES? ACP")).split(QLatin1Char(','));
}

std::array<double, 3> AnalyzerCommands::measureChannelPower()
{
    const QStringList fields = sweepAndAsk();
    return {fields.value(0).toDouble(), fields.value(1).toDouble(), fields.value(2).toDouble()};
}

std::optional<std::array<double, 3>> AnalyzerCommands::readChannelPower()
{
    constexpr double most = 1000.0; // dB; what stands for "no result" is far beyond
    const QStringList fields = sweepAndAsk();
    std::array<double, 3> numbers{};
    for (std::size_t field = 0; field < numbers.size(); ++field) {
        bool isNumber = false;
        numbers[field] = fields.value(static_cast<int>(field)).toDouble(&isNumber);
        if (!isNumber || !(std::abs(numbers[field]) < most)) {
            return std::nullopt;
        }
    }
    return numbers;
}
