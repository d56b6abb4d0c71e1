// What the commands that measure share: the run, and what follows from it.
#pragma once

#include "cli/command.h"

// levels: none for the present one. thresholds: of the curves; none are drawn up without levels.
struct Measuring
{
    QVector<double> levels;
    QVector<double> thresholds;
};

// Reads CONFIG, measures, writes. Throws Failure.
ExitStatus measure(const Session& session, const Measuring& wanted);
