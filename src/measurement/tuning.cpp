// Tuning the analyzer to the picked notch, and bringing the whole chain up. Declared in
// setup/measurement_setup.h; both need the instruments' traffic and nothing of the signal.
#include "measurement/preset.h"
#include "measurement/require_commands.h"
#include "setup/measurement_setup.h"

namespace {

void tuneTo(const Notch& notch, const Analyzer& analyzer)
{
    const std::shared_ptr<AnalyzerCommands> commands = requireCommands(analyzer);
    // The reference channel stands beside the notch, towards the middle of the signal; one
    // adjacent channel then falls on the notch.
    const double spacing = 1.2 * notch.width;
    const double center = notch.center >= 0 ? analyzer.frequency + notch.center - spacing
                                            : analyzer.frequency + notch.center + spacing;
    commands->setCenterFrequency(center);
    commands->setSpan(3.5 * notch.width);
    commands->setChannels(0.75 * notch.width, spacing);
    commands->setReferenceLevel(analyzer.level);
    commands->setAttenuation(analyzer.attenuation);
    commands->setAutoAttenuation(analyzer.autoAttenuation);
    commands->setResolutionBandwidth(analyzer.resolutionBandwidth());
    commands->setVideoBandwidth(analyzer.videoBandwidth());
    commands->setSweepTime(analyzer.sweepTime);
    commands->goToLocal();
}

} // namespace

void MeasurementSetup::tuneAnalyzerToNotch() const
{
    if (measureNotch < 1 || measureNotch > notches->items.size()) {
        return;
    }
    if (const LinkTurn turn = analyzer.link()->takeTurn()) {
        tuneTo(notches->items.at(measureNotch - 1), analyzer);
    }
}

void MeasurementSetup::presetInstruments() const
{
    ::presetInstruments({generator, analyzer, microwave}, analyzer.link()->takeTurn());
}
