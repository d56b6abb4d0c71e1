#include "cli/new_result.h"

#include "setup/config_file.h"

#include <QDateTime>

namespace {

ConfigSections configSectionsOf(const MeasurementSetup& setup)
{
    ConfigSections sections;
    const ConfigText text = parseConfigText(configTextOf(setup));
    for (auto section = text.begin(); section != text.end(); ++section) {
        for (auto key = section->begin(); key != section->end(); ++key) {
            const bool isQuoted = key->startsWith('"');
            sections[section.key()][key.key()] = isQuoted ? key->mid(1, key->size() - 2) : *key;
        }
    }
    return sections;
}

} // namespace

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
