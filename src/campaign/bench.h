// The bench that a campaign runs on: a source whose level can be set, a device, an analyzer that
// can be tuned to a notch and read.
//
// To add a kind of bench: an implementation of this interface. The campaign calls prepare() once,
// then play(), setLevel(), tune() and read() in this nesting, and finish() whatever happened. All
// calls come from one thread, which may be any. A bench that can't go on throws BenchFailure.
#pragma once

#include "campaign/npr_result.h"
#include "campaign/plan.h"
#include "dut/rare_peaks.h"
#include "dut/scatter.h"

#include <exception>

// Names the instrument and says what happened.
struct BenchFailure : std::exception
{
    explicit BenchFailure(const QString& what) : text(what) {}
    QString text;
};

// What stands in the notch's channel, as far as it is known by its origin.
struct NotchContent
{
    double stimulus = 0.0; // lines of the stimulus, mW
    double noise = 0.0;    // mW
    DistortionEnergy distortion = {};
    RarePeaks rarePeaks = {}; // of one stimulus, their powers as far as they fall into the channel
};

// Powers in milliwatts of two channels of the same bandwidth.
struct BenchReading
{
    double reference = 0.0;
    double notch = 0.0;
    bool isOverloaded = false;           // the analyzer may be driven beyond its range
    std::optional<NotchContent> content; // known in simulation
};

class Bench
{
public:
    virtual ~Bench() = default;

    // How many stimuli of different seeds so many readings of a point get; the readings of a point
    // are shared among them evenly.
    virtual int stimulusCount(int averages) const = 0;

    virtual void prepare(const CampaignPlan& plan) = 0;
    virtual void play(int stimulus) = 0; // 0 to stimulusCount() - 1
    virtual void setLevel(double dbm) = 0;
    virtual void tune(const NumberedNotch& notch) = 0;
    virtual BenchReading read() = 0;

    // Leaves the bench as it is to be left; never throws. What went wrong, or empty.
    virtual QString finish() = 0;

    virtual BenchNames names() const = 0;       // after prepare()
    virtual QVector<quint32> seeds() const = 0; // of the stimuli played so far
};
