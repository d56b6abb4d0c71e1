// "curve": NPR in all notches over levels.
#pragma once

#include "cli/command.h"
#include "cli/prepared_measuring.h"

Command curveCommand();

// Levels and thresholds. Throws Failure.
Measuring curveOf(const Arguments& arguments);
