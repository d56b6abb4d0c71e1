// A result before anything is measured: who made it, when, with which settings and signal.
#pragma once

#include "campaign/npr_result.h"
#include "setup/measurement_setup.h"
#include "signal/stimulus_statistics.h"

// Program, time and settings.
NprResult newResult(const MeasurementSetup& setup);

// The same of a command that measures nothing: no points, no instruments, the signal's own seed.
NprResult resultOfSignal(const MeasurementSetup& setup, const StimulusStatistics& statistics);

// Of a signal that was made; its seeds are those that are played, and left to who plays them.
SignalFigures figuresOf(const MeasurementSetup& setup, const StimulusStatistics& statistics);
