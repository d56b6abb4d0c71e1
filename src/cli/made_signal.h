// The signal of a setup, made or refused.
#pragma once

#include "cli/console.h"
#include "setup/measurement_setup.h"
#include "signal/stimulus_statistics.h"

// Fills signal and crestFactor. Throws Failure where there can be no signal, and says why.
void makeSignal(MeasurementSetup& setup);

// A table of what the signal is and what a device sees of it.
void printSignal(const MeasurementSetup& setup, const StimulusStatistics& statistics,
                 Console& console);

// One line on standard error for a signal that isn't noise-like.
void warnUnlessNoiseLike(const StimulusStatistics& statistics, Console& console);
