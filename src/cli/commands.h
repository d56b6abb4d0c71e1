// The commands, each in a file of its own name.
#pragma once

#include "cli/command.h"

// What the signal is, and it as waveform files.
Command signalCommand();
// A signal of a lower crest factor, as a spectrum.
Command trimCommand();
// NPR in the notches at the present level.
Command measureCommand();
// NPR in the notches over levels.
Command curveCommand();
// NPR in the notches from recordings of the device's output.
Command analyzeCommand();
// Results drawn together.
Command plotCommand();
// The signal for clients, until it is stopped.
Command serveCommand();
