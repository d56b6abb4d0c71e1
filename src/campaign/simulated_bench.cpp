#include "campaign/simulated_bench.h"

#include "base/parallel.h"
#include "campaign/stimulus_seeds.h"
#include "measurement/channels.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace {

// Levels that are worked off together, for each core: enough to keep the cores even, few enough for
// a quick end.
constexpr int levelsPerCore = 2;

} // namespace

SimulatedBench::SimulatedBench(MeasurementSetup itsSetup, Chain itsChain, QString itsDescription)
    : setup(std::move(itsSetup)),
      firstSeed(setup.seed),
      chain(std::move(itsChain)),
      description(std::move(itsDescription))
{
}

QString SimulatedBench::objectionTo(const SignalData& signal)
{
    const int length = signal.length;
    const bool isPowerOfTwo = length > 0 && (length & (length - 1)) == 0;
    return isPowerOfTwo && length >= SomeLines::shortestPeriod
               ? QString()
               : QStringLiteral("a simulated device needs a signal of 32, 64, 128 ... points, "
                                "this one has %1")
                     .arg(length);
}

int SimulatedBench::stimulusCount(int averages) const
{
    return hasSeed(setup) ? averages : 1;
}

void SimulatedBench::prepare(const CampaignPlan& plan)
{
    levels = plan.levels;
    notches = plan.notches;
}

void SimulatedBench::play(int stimulus)
{
    if (stimulus > 0 || setup.signal.length == 0) {
        setup.seed = firstSeed + static_cast<quint32>(stimulus);
        setup.calculateSignal();
    }
    const QString objection = objectionTo(setup.signal);
    if (!objection.isEmpty()) {
        throw BenchFailure(objection);
    }
    SignalData signal = std::exchange(setup.signal, SignalData());
    samples = signal.length;
    responses.clear();
    sweep.reset(); // frees its memory before the next one takes as much
    sweep = std::make_unique<LevelSweep>(
        chain, Envelope{std::move(signal.iSamples), std::move(signal.qSamples), setup.sampleRate},
        bandsOf(notches));
    if (hasSeed(setup)) {
        played << setup.seed;
    }
}

void SimulatedBench::setLevel(double dbm)
{
    level = levels.indexOf(dbm);
    if (level < firstResponse || level >= firstResponse + responses.size()) {
        respondFrom(level);
    }
}

// This level and those that will be asked for next, each on one core.
void SimulatedBench::respondFrom(int first)
{
    const int threads = usefulThreads();
    const int count = std::min(levelsPerCore * threads, levels.size() - first);
    firstResponse = first;
    responses = QVector<LevelResponse>(count);
    LevelResponse* const found = responses.data();
    scratches.resize(static_cast<std::size_t>(threads));
    std::atomic<std::size_t> worker{0};
    inParallel(static_cast<quint64>(count), threads, [&, first, count, found](Pieces& pieces) {
        const std::unique_ptr<WorkAlone> alone =
            count > 1 ? std::make_unique<WorkAlone>() : nullptr;
        LevelSweep::Scratch& scratch = scratches[worker++];
        for (quint64 piece = 0; pieces.take(piece);) {
            found[piece] = sweep->at(levels.at(first + static_cast<int>(piece)), scratch);
        }
    });
}

void SimulatedBench::tune(const NumberedNotch& wanted)
{
    const auto isWanted = [&wanted](const NumberedNotch& n) { return n.number == wanted.number; };
    notch = static_cast<int>(std::find_if(notches.cbegin(), notches.cend(), isWanted) -
                             notches.cbegin());
}

BenchReading SimulatedBench::read()
{
    const LevelResponse& response = responses.at(level - firstResponse);
    const ChannelContent& within = response.channels.at(2 * notch + 1);
    BenchReading reading;
    reading.reference = response.channels.at(2 * notch).power();
    reading.notch = within.power();
    reading.content =
        NotchContent{within.stimulus, within.noise, response.distortion, rarePeaksInNotch()};
    return reading;
}

// Only phases of chance make noise whose peaks are to be expected. Clipping is about white.
RarePeaks SimulatedBench::rarePeaksInNotch() const
{
    const bool isByChance =
        setup.customSource == SignalSource::Internal &&
        (setup.phaseMode == PhaseLaw::Seeded || setup.phaseMode == PhaseLaw::Clock);
    if (!isByChance) {
        return {};
    }
    RarePeaks peaks =
        rarePeaksOf(chain.device, milliwatts(levels.at(level)), samples, setup.nbwSrate);
    const NumberedNotch& tuned = notches.at(notch);
    const double share = channelsOf(tuned.notch).bandwidth / setup.sampleRate;
    peaks.power *= share;
    peaks.evenPower *= share;
    return peaks;
}

BenchNames SimulatedBench::names() const
{
    return {description, QStringLiteral("simulated"), QStringLiteral("simulated")};
}
