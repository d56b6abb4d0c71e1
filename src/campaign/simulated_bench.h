// A bench in the process: the signal is calculated, interpolated and scaled here, a device model
// runs once a level, and all notches of a level are read from one spectrum. The same setup and
// chain give the same bits, on any number of cores.
#pragma once

#include "campaign/bench.h"
#include "dut/level_sweep.h"
#include "setup/measurement_setup.h"

#include <vector>

class SimulatedBench : public Bench
{
public:
    // setup is a copy made by forOtherThread(); a signal that it holds is taken for that of its
    // settings and isn't calculated again. description: the device as the command line gives it.
    SimulatedBench(MeasurementSetup setup, Chain chain, QString description);

    // Why a signal can't be played here; empty if it can.
    static QString objectionTo(const SignalData& signal);

    int stimulusCount(int averages) const override;
    void prepare(const CampaignPlan& plan) override;
    void play(int stimulus) override;
    void setLevel(double dbm) override;
    void tune(const NumberedNotch& notch) override;
    BenchReading read() override;
    QString finish() override { return {}; }
    BenchNames names() const override;
    QVector<quint32> seeds() const override { return played; }

private:
    void respondFrom(int level);
    RarePeaks rarePeaksInNotch() const;

    MeasurementSetup setup;
    const quint32 firstSeed;
    const Chain chain;
    const QString description;
    QVector<double> levels;
    QVector<NumberedNotch> notches;
    std::unique_ptr<LevelSweep> sweep;
    QVector<LevelResponse> responses;           // of neighbouring levels
    std::vector<LevelSweep::Scratch> scratches; // one a thread
    int firstResponse = 0;                      // level of the first of them
    int level = 0;
    int notch = 0;
    int samples = 0; // of the stimulus
    QVector<quint32> played;
};
