#include "cli/new_result.h"

#include "campaign/recorded_config.h"
#include "campaign/stimulus_seeds.h"

#include <QDateTime>

NprResult newResult(const MeasurementSetup& setup)
{
    NprResult result;
    result.program = QStringLiteral("notchbench-cli " NOTCHBENCH_VERSION);
    // Deliberate: in whole seconds and UTC, the only member that two runs of a command differ in.
    result.started = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    result.config = configSectionsOf(setup);
    return result;
}

SignalFigures figuresOf(const MeasurementSetup& setup, const StimulusStatistics& statistics)
{
    SignalFigures figures;
    figures.length = setup.signal.length;
    figures.sampleRate = setup.sampleRate;
    figures.crestFactor = setup.crestFactor;
    figures.peakBetweenSamples = statistics.peak;
    for (std::size_t k = 0; k < ccdfShares.size(); ++k) {
        figures.ccdf[100.0 * ccdfShares[k]] = statistics.ccdf[k];
    }
    figures.noiseLike = statistics.isNoiseLike;
    return figures;
}

NprResult resultOfSignal(const MeasurementSetup& setup, const StimulusStatistics& statistics)
{
    NprResult result = newResult(setup);
    result.signal = figuresOf(setup, statistics);
    result.signal.seeds = seedsOf(setup);
    return result;
}
