#include "curves/order_check.h"

#include "campaign/instrument_bench.h"
#include "campaign/recorded_config.h"
#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/new_result.h"
#include "cli/setup_arguments.h"
#include "curves/bench_holders.h"

#include <QFile>

#include <algorithm>
#include <cstdlib>

namespace {

// What the command would write to a terminal, line by line.
class HeardConsole
{
public:
    HeardConsole() : stream(open_memstream(&text, &size)), console(stream, stream) {}
    ~HeardConsole()
    {
        std::fclose(stream);
        std::free(text); // NOLINT: from open_memstream
    }
    HeardConsole(const HeardConsole&) = delete;
    HeardConsole& operator=(const HeardConsole&) = delete;

    Console& itself() { return console; }
    QStringList lines()
    {
        std::fflush(stream);
        const QString all = QString::fromLocal8Bit(text, static_cast<int>(size));
        QStringList found = all.split('\n', Qt::SkipEmptyParts);
        for (QString& line : found) {
            line.remove(QStringLiteral("notchbench-cli: ")).remove(QStringLiteral("warning: "));
        }
        return found;
    }

private:
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* stream;
    Console console;
};

Arguments argumentsOf(const QStringList& words)
{
    return {words.mid(1), curveCommand().options};
}

// A window has no standard input to read one from.
void refuseStandardInput(const Arguments& arguments)
{
    if (arguments.positional().contains(QStringLiteral("-"))) {
        failUsage(QStringLiteral("a configuration is a file or \"default\""));
    }
}

// A level of one stimulus takes so long for each point of the signal; other work is little.
double simulatedSeconds(const CampaignPlan& plan, int signalLength)
{
    constexpr double perPoint = 1.5e-7;
    constexpr double perStimulus = 5e-7;
    return double(plan.averages) * signalLength * (plan.levels.size() * perPoint + perStimulus);
}

// That of a file is known when it is read; until then it counts as long enough for any notch.
qint32 expectedLength(const MeasurementSetup& setup)
{
    constexpr qint32 longEnough = 1 << 22;
    return setup.customSource == SignalSource::Internal ? static_cast<qint32>(setup.fftLength())
                                                        : longEnough;
}

// Instruments refuse what a carrier of 0 Hz, that of the program's defaults, asks of them.
QString carrierNotice(const MeasurementSetup& setup, const CampaignPlan& plan)
{
    const double carrier = setup.effectiveFrequency();
    const bool isAbove =
        std::all_of(plan.notches.begin(), plan.notches.end(), [carrier](const NumberedNotch& one) {
            return carrier + one.notch.center > one.notch.width;
        });
    return isAbove ? QString()
                   : QStringLiteral("The carrier of the configuration is at %1 MHz, too low for "
                                    "its notches: choose a configuration with the carrier that "
                                    "the generator plays.")
                         .arg(carrier / 1e6);
}

void estimate(const Arguments& arguments, HeardConsole& console, OrderCheck& check)
{
    const CurveRequest wanted = curveRequestOf(arguments);
    const MeasuringRequest request = requestOf(arguments);
    const MeasurementSetup setup = readSetup(arguments, console.itself());
    requireMeasurable(setup);
    const qint32 length = expectedLength(setup);
    const CampaignPlan plan = planOf(setup, length, request, wanted.levels, arguments);
    requireSubtractable(request.without, newResult(setup), plan, arguments);
    check.readings = plan.readingCount();
    check.seconds = request.simulated ? simulatedSeconds(plan, length)
                                      : InstrumentBench(setup).expectedSeconds(plan);
    QStringList notices = console.lines();
    if (!request.simulated) {
        notices << holdersNotice(setup);
        notices << carrierNotice(setup, plan);
        notices << QStringLiteral("The generator has to play the signal already.");
    }
    notices.removeAll(QString());
    check.notice = notices.join('\n');
}

// By the addresses that the result keeps.
QString holdersOf(const PreparedMeasuring& measuring)
{
    return measuring.request.simulated ? QString()
                                       : holdersNotice(setupOf(measuring.result.config));
}

} // namespace

OrderCheck checkOrder(const QStringList& words)
{
    OrderCheck check;
    HeardConsole console;
    try {
        const Arguments arguments = argumentsOf(words);
        refuseStandardInput(arguments);
        estimate(arguments, console, check);
        check.failure.clear();
    } catch (const Failure& failure) {
        check.failure = failure.text;
    }
    return check;
}

ReadyOrder prepareOrder(const QStringList& words, const std::function<bool()>& isStopped)
{
    ReadyOrder ready;
    HeardConsole console;
    const StopCheck stop = [&isStopped] {
        if (isStopped()) {
            throw Failure{ExitStatus::Interrupted, QString()};
        }
    };
    try {
        const Arguments arguments = argumentsOf(words);
        refuseStandardInput(arguments);
        ready.measuring =
            prepareMeasuring(arguments, curveRequestOf(arguments), console.itself(), stop);
        ready.measuring.result.program.replace("notchbench-cli", "notchbench-curves");
        ready.holders = holdersOf(ready.measuring);
        ready.failure.clear();
    } catch (const Failure& failure) {
        ready.failure = failure.text;
    }
    ready.warnings = console.lines();
    return ready;
}
