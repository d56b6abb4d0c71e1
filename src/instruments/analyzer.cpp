#include "instruments/analyzer.h"

#include "instruments/bandwidth_code.h"
#include "instruments/config_line.h"
#include "instruments/connect_device.h"

void Analyzer::setResolutionBandwidth(quint32 hertz)
{
    rbwCode = codeFromBandwidth(hertz);
}

void Analyzer::setVideoBandwidth(quint32 hertz)
{
    vbwCode = codeFromBandwidth(hertz);
}

quint32 Analyzer::resolutionBandwidth() const
{
    return bandwidthFromCode(rbwCode);
}

quint32 Analyzer::videoBandwidth() const
{
    return bandwidthFromCode(vbwCode);
}

void Analyzer::setAutoSweepTime(bool automatic)
{
    autoSweepTime = automatic;
    if (automatic) {
        sweepTime = 0.0;
    }
}

QString Analyzer::configSection() const
{
    return commonConfigLines(QStringLiteral("Analyzer")) +
           configLine("Span", QString::number(span)) + configLine("Level", QString::number(level)) +
           configLine("Atten", QString::number(attenuation)) +
           configLine("AUTO Atten", QString::number(int{autoAttenuation})) +
           configLine("Res BW", QString::number(resolutionBandwidth())) +
           configLine("Video BW", QString::number(videoBandwidth())) +
           configLine("Sweeptime", QString::number(sweepTime)) +
           configLine("AUTO Swt", QString::number(int{autoSweepTime})) + QLatin1Char('\n');
}

// Only init() puts a command object into the link, and that of this type.
std::shared_ptr<AnalyzerCommands> Analyzer::commands() const
{
    return std::static_pointer_cast<AnalyzerCommands>(remote());
}

void Analyzer::init() const
{
    connectDevice(*this, [](std::unique_ptr<KORemoteInterface> transport) {
        return std::make_shared<AnalyzerCommands>(std::move(transport));
    });
}

void Analyzer::setup() const
{
    configureDevice(*this, [this](AnalyzerCommands& commands) {
        commands.setCenterFrequency(frequency);
        commands.setSpan(span);
        commands.setReferenceLevel(level);
        // Deliberate: the number goes first, as "AUTO ON" would be switched off by it.
        commands.setAttenuation(attenuation);
        commands.setAutoAttenuation(autoAttenuation);
        commands.setResolutionBandwidth(resolutionBandwidth());
        commands.setVideoBandwidth(videoBandwidth());
        commands.setSweepTime(sweepTime);
    });
}
