// "signal": calculates the signal, tells what it is, and writes it as waveform files.
#pragma once

#include "cli/command.h"

Command signalCommand();
