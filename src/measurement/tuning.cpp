#include "measurement/tuning.h"

#include "measurement/channels.h"
#include "measurement/require_commands.h"
#include "setup/measurement_setup.h"

void tuneToNotch(const Notch& notch, const Analyzer& analyzer)
{
    const std::shared_ptr<AnalyzerCommands> commands = requireCommands(analyzer);
    const ReadingChannels channels = channelsOf(notch);
    // Deliberate: the spacing is added to the absolute frequency, whose rounding saved traffic
    // shows.
    commands->setCenterFrequency(channels.notchIsUpper
                                     ? analyzer.frequency + notch.center - channels.spacing
                                     : analyzer.frequency + notch.center + channels.spacing);
    commands->setSpan(3.5 * notch.width);
    commands->setChannels(channels.bandwidth, channels.spacing);
    commands->setReferenceLevel(analyzer.level);
    commands->setAttenuation(analyzer.attenuation);
    commands->setAutoAttenuation(analyzer.autoAttenuation);
    commands->setResolutionBandwidth(analyzer.resolutionBandwidth());
    commands->setVideoBandwidth(analyzer.videoBandwidth());
    commands->setSweepTime(analyzer.sweepTime);
    commands->goToLocal();
}

void MeasurementSetup::tuneAnalyzerToNotch() const
{
    if (measureNotch < 1 || measureNotch > notches->items.size()) {
        return;
    }
    if (const LinkTurn turn = analyzer.link()->takeTurn()) {
        tuneToNotch(notches->items.at(measureNotch - 1), analyzer);
    }
}
