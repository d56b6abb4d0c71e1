// The bench of real instruments, over their links. The generator has to play the signal already: no
// waveform travels over these connections.
//
// What leaves the chain is the level of its last generator that sets one: the microwave
// generator's, unless that is driven through its IF input and passes on what the signal generator
// puts out. Its output is switched on at the lowest level of the plan, nothing above the highest is
// ever sent, and finish() leaves the lower of the plan's highest and the level that the settings
// had.
//
// The analyzer's reference level keeps the distance from the level that it has in the settings.
//
// An instrument counts as lost when its connection fails, closes or answers with less than it
// should. (A generator that never said who it is isn't asked again: that would cost three seconds a
// level.) It is then tried once more over a new connection, with all its settings; after that the
// bench fails. Waits for the turns of the links. The same thread for all calls, which may be any.
#pragma once

#include "campaign/bench.h"
#include "measurement/preset.h"

#include <functional>

struct MeasurementSetup;

class InstrumentBench : public Bench
{
public:
    explicit InstrumentBench(const MeasurementSetup& setup);

    // The level that the settings have, and where it is set, for people: "signal generator".
    double presentLevel() const;
    QString levelledInstrument() const;
    // What a plan takes, as far as it can be known: sweeps, their traffic and settling.
    double expectedSeconds(const CampaignPlan& plan) const;

    int stimulusCount(int /*averages*/) const override { return 1; }
    void prepare(const CampaignPlan& plan) override;
    void play(int /*stimulus*/) override {}
    void setLevel(double dbm) override;
    void tune(const NumberedNotch& notch) override;
    BenchReading read() override;
    QString finish() override;
    BenchNames names() const override { return benchNames; }
    QVector<quint32> seeds() const override { return playedSeeds; }

private:
    using Conversation = std::function<void()>;

    bool microwaveSetsLevel() const;
    Instrument& levelled();
    const Instrument& levelled() const;
    void sendLevel() const;
    void follow(double level);
    void bringUp(const Instrument& instrument, const Conversation& settle);
    void setUpSource(const Instrument& instrument) const;
    void setUpAnalyzer() const;
    void insist(const Instrument& instrument, const Conversation& settle, const Conversation& talk);
    BenchReading sweep() const;

    InstrumentChain chain; // as it is set now
    const double settingsLevel;
    const double settingsReferenceLevel;
    const double signalBandwidth; // Hz, without the notches
    const QVector<quint32> playedSeeds;
    BenchNames benchNames;
    double highest = 0.0;       // of the plan
    bool hasSource = false;     // the last generator may have been switched on
    bool sourceAnswers = false; // "*IDN?", as not every model does
    Notch tuned;
};
