// Tuning the analyzer to the picked notch, and bringing the whole chain up. Declared in
// setup/measurement_setup.h; both need the instruments' traffic and nothing of the signal.
#include "measurement/tuning.h"

#include "measurement/channels.h"
#include "measurement/preset.h"
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

void MeasurementSetup::presetInstruments() const
{
    ::presetInstruments({generator, analyzer, microwave}, analyzer.link()->takeTurn());
}
