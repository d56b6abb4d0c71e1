#include "campaign/instrument_bench.h"

#include "campaign/stimulus_seeds.h"
#include "dut/envelope.h"
#include "measurement/channels.h"
#include "measurement/tuning.h"
#include "remote/ko_remote_exception.h"
#include "setup/measurement_setup.h"

#include <algorithm>

namespace {

constexpr double usualSweep = 1.0;   // s, where the analyzer chooses
constexpr double trafficTime = 0.05; // s a reading
// Noise may lie so far above the reference level before it must be taken for too much.
constexpr double mostOverReference = 10.0; // dB

double occupiedBandwidth(const MeasurementSetup& setup)
{
    double bandwidth = setup.nbwSrate * setup.sampleRate;
    for (const Notch& notch : qAsConst(setup.notches->items)) {
        bandwidth -= notch.width;
    }
    return bandwidth;
}

// What a failed conversation says; empty for one that went well.
template <class Talk> QString failureOf(Talk talk)
{
    try {
        talk();
    } catch (KORemoteException* failure) {
        return takeMessage(failure);
    }
    return {};
}

// A command gets no answer: only a question tells that the device is there. One that never answers
// "*IDN?" is known by its connection alone, as far as that can be seen.
void requirePresence(const Instrument& instrument, bool answers)
{
    if (answers && instrument.remote()->identity().isEmpty()) {
        throwRemoteException(QStringLiteral("it doesn't answer any more"));
    }
    if (instrument.remote()->hasHungUp()) {
        throwRemoteException(QStringLiteral("it closed the connection"));
    }
    instrument.remote()->goToLocal();
}

// Of the connection that stands, or an exception that says why there is none.
template <class Device> auto requireConnection(const Device& device)
{
    if (!device.initialized()) {
        throwRemoteException(device.deviceMessage());
    }
    return device.commands();
}

} // namespace

InstrumentBench::InstrumentBench(const MeasurementSetup& setup)
    : chain{setup.generator, setup.analyzer, setup.microwave},
      settingsLevel(levelled().level),
      settingsReferenceLevel(setup.analyzer.level),
      signalBandwidth(occupiedBandwidth(setup)),
      playedSeeds(seedsOf(setup))
{
}

bool InstrumentBench::microwaveSetsLevel() const
{
    return chain.microwave.device != 0 && !chain.microwave.ifInput;
}

Instrument& InstrumentBench::levelled()
{
    return microwaveSetsLevel() ? static_cast<Instrument&>(chain.microwave) : chain.generator;
}

const Instrument& InstrumentBench::levelled() const
{
    return microwaveSetsLevel() ? static_cast<const Instrument&>(chain.microwave) : chain.generator;
}

double InstrumentBench::presentLevel() const
{
    return settingsLevel;
}

QString InstrumentBench::levelledInstrument() const
{
    return microwaveSetsLevel() ? QStringLiteral("microwave generator")
                                : QStringLiteral("signal generator");
}

double InstrumentBench::expectedSeconds(const CampaignPlan& plan) const
{
    const double sweepTime = chain.analyzer.sweepTime > 0.0 ? chain.analyzer.sweepTime : usualSweep;
    return double(plan.readingCount()) * (sweepTime + trafficTime) +
           plan.levels.size() * plan.settleSeconds;
}

void InstrumentBench::sendLevel() const
{
    if (microwaveSetsLevel()) {
        requireConnection(chain.microwave)->setLevel(chain.microwave.level);
    } else {
        requireConnection(chain.generator)->setLevel(chain.generator.level);
    }
}

void InstrumentBench::follow(double level)
{
    levelled().level = level;
    chain.analyzer.level = settingsReferenceLevel + (level - settingsLevel);
}

// The level goes first: the settings begin with the output, and the generator may have been left
// louder than it is to be.
void InstrumentBench::setUpSource(const Instrument& instrument) const
{
    if (&instrument == &levelled()) {
        sendLevel();
    }
    instrument.setup();
    if (!instrument.initialized()) {
        throwRemoteException(instrument.deviceMessage());
    }
}

void InstrumentBench::setUpAnalyzer() const
{
    chain.analyzer.setup();
    requireConnection(chain.analyzer)->presetChannelPower(chain.analyzer.level);
    if (tuned.width > 0.0) {
        tuneToNotch(tuned, chain.analyzer);
    }
}

// Talks over the connection that there is, and if that fails once more over a new one.
void InstrumentBench::insist(const Instrument& instrument, const Conversation& settle,
                             const Conversation& talk)
{
    const LinkTurn turn = instrument.link()->takeTurn();
    if (failureOf(talk).isEmpty()) {
        return;
    }
    const QString failure = failureOf([&] {
        instrument.init();
        if (!instrument.initialized()) {
            throwRemoteException(instrument.deviceMessage());
        }
        settle();
        talk();
    });
    if (!failure.isEmpty()) {
        const QString name = &instrument == &chain.analyzer ? QStringLiteral("analyzer")
                             : &instrument == &chain.microwave
                                 ? QStringLiteral("microwave generator")
                                 : QStringLiteral("signal generator");
        throw BenchFailure(QStringLiteral("%1 %2: %3; check its address, interface and cable")
                               .arg(name, instrument.ipAddress, failure));
    }
}

void InstrumentBench::bringUp(const Instrument& instrument, const Conversation& settle)
{
    insist(instrument, settle, [&] {
        instrument.init();
        if (!instrument.initialized()) {
            throwRemoteException(instrument.deviceMessage());
        }
        settle();
    });
}

// The analyzer first: until it is in its place, nothing is switched on.
void InstrumentBench::prepare(const CampaignPlan& plan)
{
    highest = plan.highestLevel();
    follow(plan.lowestLevel());
    bringUp(chain.analyzer, [this] { setUpAnalyzer(); });
    benchNames.analyzer = chain.analyzer.deviceMessage();
    hasSource = true;
    bringUp(chain.generator, [this] { setUpSource(chain.generator); });
    benchNames.generator = chain.generator.deviceMessage();
    if (chain.microwave.device != 0) {
        bringUp(chain.microwave, [this] { setUpSource(chain.microwave); });
        benchNames.generator += QStringLiteral(" + ") + chain.microwave.deviceMessage();
    }
    sourceAnswers = !levelled().deviceMessage().isEmpty();
}

// The analyzer hears of a rising level before the generator does, so that it is never overdriven.
void InstrumentBench::setLevel(double dbm)
{
    const bool isRising = dbm > levelled().level;
    follow(dbm);
    if (isRising) {
        insist(
            chain.analyzer, [this] { setUpAnalyzer(); },
            [this] { requireConnection(chain.analyzer)->setReferenceLevel(chain.analyzer.level); });
    }
    const Instrument& source = levelled();
    insist(
        source, [&] { setUpSource(source); },
        [&] {
            sendLevel();
            requirePresence(source, sourceAnswers);
        });
}

void InstrumentBench::tune(const NumberedNotch& notch)
{
    tuned = notch.notch;
    insist(
        chain.analyzer, [this] { setUpAnalyzer(); },
        [this] {
            (void)requireConnection(chain.analyzer);
            tuneToNotch(tuned, chain.analyzer);
        });
}

BenchReading InstrumentBench::read()
{
    BenchReading reading;
    insist(
        chain.analyzer, [this] { setUpAnalyzer(); }, [&] { reading = sweep(); });
    return reading;
}

BenchReading InstrumentBench::sweep() const
{
    const auto commands = requireConnection(chain.analyzer);
    const auto numbers = commands->readChannelPower();
    if (!numbers) {
        throwRemoteException(QStringLiteral("its answer has fewer than three numbers"));
    }
    commands->goToLocal();
    const ReadingChannels channels = channelsOf(tuned);
    const double reference = (*numbers)[0];
    const double adjacent = channels.notchIsUpper ? (*numbers)[2] : (*numbers)[1];
    BenchReading reading;
    reading.reference = milliwatts(reference);
    reading.notch = milliwatts(reference + adjacent);
    const double all = reading.reference * signalBandwidth / channels.bandwidth;
    reading.isOverloaded = all > milliwatts(chain.analyzer.level + mostOverReference);
    return reading;
}

QString InstrumentBench::finish()
{
    if (!hasSource) {
        return {}; // nothing was switched on
    }
    try {
        setLevel(std::min(settingsLevel, highest));
    } catch (const BenchFailure& failure) {
        return QStringLiteral("the level could not be set back: ") + failure.text;
    } catch (const std::exception&) {
        return QStringLiteral("the level could not be set back: not enough memory");
    }
    return {};
}
