// The four internal sources of a spectrum: n bins in frequency order, each with a phase by one
// law, and a magnitude that is flat or, with sinxCompensation, lifts the roll-off of a
// converter. The samples stay at zero until the pipeline fills them.
//
// Any thread. n at most maxSignalLength. Only memory can fail, with std::bad_alloc.
#pragma once

#include "setup/signal_data.h"

// r/32768 * 2 pi - pi, r drawn after seeding with seed: the same seed gives the same phases
// always, and a longer n extends the same draws.
SignalData makeSeededPhases(quint32 n, bool sinxCompensation, quint32 seed);

// r/32767 * 2 pi - pi, r drawn after seeding with the calendar clock in whole seconds, so two
// calls within a second give the same phases.
SignalData makeClockPhases(quint32 n, bool sinxCompensation);

// pi/4 - (i+1)^2 pi/n, unwrapped: with a flat spectrum the envelope is constant.
SignalData makeParabolicPhases(quint32 n, bool sinxCompensation);

// pi/4 in every bin: all energy in one sample, the worst crest factor.
SignalData makeConstantPhases(quint32 n, bool sinxCompensation);
