#include "cli/signal_command.h"

#include "cli/made_signal.h"
#include "cli/nearest_name.h"
#include "cli/setup_arguments.h"
#include "files/waveform_output.h"

#include <algorithm>
#include <vector>

namespace {

struct Format
{
    QString name;
    QString suffix;      // that asks for it
    QString otherSuffix; // of its second file; empty for one file
};

const std::vector<Format>& formats()
{
    static const std::vector<Format> all = {
        {"text", ".i", ".q"},
        {"wav", ".i.wav", ".q.wav"},
        {"wv", ".wv", ""},
    };
    return all;
}

QStringList formatNames()
{
    QStringList names;
    for (const Format& format : formats()) {
        names.append(format.name);
    }
    return names;
}

std::vector<Format> chosenFormats(const Arguments& arguments)
{
    std::vector<Format> chosen;
    for (const QString& name : arguments.values("format")) {
        const auto found = std::find_if(formats().begin(), formats().end(),
                                        [&](const Format& format) { return format.name == name; });
        if (found == formats().end()) {
            failUsage("--format: unknown format " + name + didYouMean(name, formatNames()));
        }
        chosen.push_back(*found);
    }
    if (arguments.has("out") != arguments.has("format")) {
        failUsage("--out and --format belong together; formats are " + formatNames().join(", "));
    }
    return chosen;
}

void writeSignal(const MeasurementSetup& setup, const QString& base, const Format& format,
                 Console& console)
{
    const QString file = base + format.suffix;
    const QString files =
        format.otherSuffix.isEmpty() ? file : file + " and " + base + format.otherSuffix;
    if (!saveWaveform(file, setup.signal, setup.sampleRate)) {
        failFile("can't write " + files + "; is there such a folder, and room on its disk?");
    }
    console.print("wrote " + files + '\n');
}

ExitStatus run(const Session& session)
{
    const std::vector<Format> chosen = chosenFormats(session.arguments);
    MeasurementSetup setup = readSetup(session.arguments, session.console);
    makeSignal(setup);
    const StimulusStatistics statistics = statisticsOf(setup.signal);
    if (session.stop.received() != 0) {
        return statusOfSignal(session.stop.received());
    }
    printSignal(setup, statistics, session.console);
    warnUnlessNoiseLike(statistics, session.console);
    for (const Format& format : chosen) {
        writeSignal(setup, session.arguments.value("out"), format, session.console);
    }
    return ExitStatus::Done;
}

} // namespace

Command signalCommand()
{
    return {"signal",
            "Calculate the signal, tell its length, crest factor and distribution, and write it.",
            "CONFIG",
            "signal default --notches 9,1e6,-100,0 --out noise --format wv",
            Options{{"out", "BASE", "Write the signal to files whose names begin so."},
                    {"format", "FORMAT",
                     "Form of the files, once or several times: text (BASE.i, BASE.q), wav "
                     "(BASE.i.wav, BASE.q.wav) or wv (BASE.wv).",
                     true}} +
                setupOptions(),
            run};
}
