// What a campaign measures: each notch at each level, so many readings a point.
#pragma once

#include "campaign/notch_rows.h"

#include <QVector>

struct CampaignPlan
{
    QVector<double> levels; // dBm, in the order in which they are measured
    QVector<NumberedNotch> notches;
    int averages = 1;           // readings a point
    double settleSeconds = 0.0; // after each change of level

    qint64 readingCount() const { return qint64{levels.size()} * notches.size() * averages; }
    double highestLevel() const; // of at least one
    double lowestLevel() const;
};

constexpr int mostLevels = 10000;

// From one level to another in steps of a size; the last one is the end, if the steps meet it.
// Steps lead from the first to the last whatever the sign of the size. Empty for a step of 0, for
// what isn't finite and for more than mostLevels.
QVector<double> levelSteps(double from, double to, double step);
