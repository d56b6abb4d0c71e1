// Takes the bench's own distortion and noise off a result: what filled the notches without the
// device is subtracted, notch by notch at the same level, as powers relative to the signal. Any
// thread.
#pragma once

#include "campaign/npr_result.h"
#include "campaign/plan.h"

// The points of a result that was measured without the device, in an order in which one of
// thousands is found quickly. Copies share them.
class BenchPoints
{
public:
    explicit BenchPoints(const QVector<NprPoint>& measured);

    // That of the same level and notch (by centre and width); null for none.
    const NprPoint* at(const NprPoint& place) const;

private:
    QVector<NprPoint> points; // by level, then by centre
};

// Why a result that was measured without the device can't be subtracted from what the plan will
// measure with the settings of wanted; empty where it can. It has to have all notches (by centre
// and width) and levels of the plan, and the same noise bandwidth.
QString objectionToSubtracting(const NprResult& without, const NprResult& wanted,
                               const CampaignPlan& plan);

// Changes ratios and sigmas of points by those of without, which was measured without the device. A
// point that lies less than 3 dB below what was subtracted gets the mark "margin"; one from which
// nothing is left keeps its ratio, as a lower bound, and the mark. Empty, or why it is refused, and
// then nothing changes: without has to have all notches (by centre and width) and levels of points.
QString subtractBench(const BenchPoints& without, QVector<NprPoint>& points);
QString subtractBench(const QVector<NprPoint>& without, QVector<NprPoint>& points);
