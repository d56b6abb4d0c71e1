#include "cli/commands.h"

#include "cli/made_signal.h"
#include "cli/nearest_name.h"
#include "cli/new_result.h"
#include "cli/output_files.h"
#include "cli/result_output.h"
#include "cli/setup_arguments.h"
#include "cli/signal_formats.h"

#include <algorithm>
#include <vector>

namespace {

using Formats = std::vector<SignalFormat>;

Formats chosenFormats(const Arguments& arguments)
{
    Formats chosen;
    for (const QString& name : arguments.values("format")) {
        const Formats& all = signalFormats();
        const auto found = std::find_if(all.begin(), all.end(), [&](const SignalFormat& format) {
            return format.name == name;
        });
        if (found == all.end()) {
            failUsage("--format: unknown format " + name + didYouMean(name, signalFormatNames()));
        }
        chosen.push_back(*found);
    }
    if (arguments.has("out") != arguments.has("format")) {
        failUsage("--out and --format belong together; formats are " +
                  signalFormatNames().join(", "));
    }
    return chosen;
}

// Returns the names of the files.
QString writeSignal(const MeasurementSetup& setup, const QString& base, const SignalFormat& format)
{
    QStringList files;
    for (const QString& suffix : format.suffixes) {
        files.append(base + suffix);
    }
    QString written = files.join(" and ");
    if (!format.write(setup, base)) {
        failWriting(written);
    }
    return written;
}

ExitStatus run(const Session& session)
{
    const Formats chosen = chosenFormats(session.arguments);
    checkResultOptions(session.arguments);
    const bool isForPeople = !takesStandardOutput(session.arguments);
    MeasurementSetup setup = readSetup(session.arguments, session.console);
    makeSignal(setup);
    const StimulusStatistics statistics = statisticsOf(setup.signal);
    if (session.stop.received() != 0) {
        return statusOfSignal(session.stop.received());
    }
    if (isForPeople) {
        printSignal(setup, statistics, session.console);
    }
    warnUnlessNoiseLike(statistics, session.console);
    for (const SignalFormat& format : chosen) {
        const QString written = writeSignal(setup, session.arguments.value("out"), format);
        if (isForPeople) {
            session.console.print("wrote " + written + '\n');
        }
    }
    writeResult(resultOfSignal(setup, statistics), session.arguments, session.console);
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
                     "(BASE.i.wav, BASE.q.wav) or wv (BASE.wv) as the window writes them; npy "
                     "(BASE.npy, complex64), sigmf (BASE.sigmf-meta, BASE.sigmf-data) or cf32 "
                     "(BASE.cf32, I and Q in turn) in single precision, as served over TCP.",
                     true}} +
                jsonOption() + setupOptions(),
            run};
}
