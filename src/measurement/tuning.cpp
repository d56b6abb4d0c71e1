// Tuning the analyzer to the picked notch, and bringing the whole chain up. Declared in
// setup/measurement_setup.h; both need the instruments' traffic and nothing of the signal.
#include "remote/ko_remote_exception.h"
#include "setup/measurement_setup.h"

namespace {

void requireCommands(const Analyzer& analyzer)
{
    if (!analyzer.commands) {
        throwRemoteException(QStringLiteral("Analyzer is not initialized!"));
    }
}

// init() keeps its own failures in the device message. Deliberate: the guard stays as a second
// line of defence for one that comes from outside of its sequence.
void initOrReport(Instrument& instrument, const char* report)
{
    try {
        instrument.init();
    } catch (KORemoteException* failure) {
        takeMessage(failure);
        throwRemoteException(QLatin1String(report));
    }
}

} // namespace

void MeasurementSetup::tuneAnalyzerToNotch()
{
    if (measureNotch < 1 || measureNotch > notches->items.size()) {
        return;
    }
    requireCommands(analyzer);
    const Notch& notch = notches->items.at(measureNotch - 1);
    // The reference channel stands beside the notch, towards the middle of the signal; one
    // adjacent channel then falls on the notch.
    const double spacing = 1.2 * notch.width;
    const double center = notch.center >= 0 ? analyzer.frequency + notch.center - spacing
                                            : analyzer.frequency + notch.center + spacing;
    AnalyzerCommands& commands = *analyzer.commands;
    commands.setCenterFrequency(center);
    commands.setSpan(3.5 * notch.width);
    commands.setChannels(0.75 * notch.width, spacing);
    commands.setReferenceLevel(analyzer.level);
    commands.setAttenuation(analyzer.attenuation);
    commands.setAutoAttenuation(analyzer.autoAttenuation);
    commands.setResolutionBandwidth(analyzer.resolutionBandwidth());
    commands.setVideoBandwidth(analyzer.videoBandwidth());
    commands.setSweepTime(analyzer.sweepTime);
    commands.goToLocal();
}

void MeasurementSetup::presetInstruments()
{
    const bool hasMicrowave = microwave.device != 0;
    initOrReport(analyzer, "Analyzer cannot be found.");
    initOrReport(generator, "Signal Generator cannot be found.");
    if (hasMicrowave) {
        initOrReport(microwave, "Microwave cannot be found.");
    }
    analyzer.setup();
    generator.setup();
    if (hasMicrowave) {
        microwave.setup();
    }
    requireCommands(analyzer);
    analyzer.commands->presetChannelPower(analyzer.level);
}
