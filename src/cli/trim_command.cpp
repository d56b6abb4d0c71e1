#include "cli/commands.h"

#include "cli/made_signal.h"
#include "cli/new_result.h"
#include "cli/output_files.h"
#include "cli/progress.h"
#include "cli/result_output.h"
#include "cli/setup_arguments.h"
#include "cli/values.h"
#include "files/magnitude_phase_output.h"
#include "signal/crest_factor_trim.h"

namespace {

QString decibelText(double value)
{
    return QString::number(value, 'f', 2) + " dB";
}

TrimResult trim(MeasurementSetup& setup, double target, const Session& session)
{
    constexpr int usualRounds = 30;
    Progress progress(session.console, "rounds");
    return trimCrestFactor(setup.signal, target, [&](int round, double /*peak*/) {
        progress.show(round, std::max(usualRounds, round + 1));
        return session.stop.received() == 0;
    });
}

ExitStatus run(const Session& session)
{
    const Arguments& arguments = session.arguments;
    if (!arguments.has("target") || !arguments.has("out")) {
        failUsage("trim needs --target DB and --out FILE.pmc");
    }
    checkResultOptions(arguments, arguments.values("out"));
    const double target = numberOf(arguments.value("target"), "--target", {0.1, 100.0, "dB"});
    MeasurementSetup setup = readSetup(arguments, session.console);
    makeSignal(setup);
    const TrimResult result = trim(setup, target, session);
    if (session.stop.received() != 0) {
        return statusOfSignal(session.stop.received());
    }
    setup.crestFactor = setup.signal.crestFactor();
    const StimulusStatistics statistics = statisticsOf(setup.signal);
    const bool isForPeople = !takesStandardOutput(arguments);
    if (isForPeople) {
        printSignal(setup, statistics, session.console);
    }
    warnUnlessNoiseLike(statistics, session.console);
    const QString file = arguments.value("out");
    if (!saveMagnitudePhaseFile(setup.signal, file)) {
        failWriting(file);
    }
    if (isForPeople) {
        session.console.print(
            QStringLiteral("wrote %1 after %2 rounds\n").arg(file).arg(result.rounds));
    }
    writeResult(resultOfSignal(setup, statistics), arguments, session.console);
    if (!result.isReached) {
        session.console.warn("the target of " + decibelText(target) + " can't be reached; " + file +
                             " has " + decibelText(result.peak) + " between the samples");
        return ExitStatus::LimitMissed;
    }
    return ExitStatus::Done;
}

} // namespace

Command trimCommand()
{
    return {"trim",
            "Lower the crest factor by cutting the peaks and restoring the magnitudes, and write "
            "the spectrum for \"Load Mag/Pha\".",
            "CONFIG",
            "trim default --target 9 --out trimmed.pmc",
            Options{{"target", "DB",
                     "Peak of the envelope over its mean, between the samples too. Below 8 dB the "
                     "signal is no longer noise, and what you measure with it isn't NPR."},
                    {"out", "FILE.pmc",
                     "Where phases and magnitudes go. Load the file with the same notches, or with "
                     "none. A target that can't be reached ends with status 1; the best signal "
                     "found is written."}} +
                jsonOption() + setupOptions(),
            run};
}
