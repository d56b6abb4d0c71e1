// "trim": lowers the crest factor of the signal and writes the spectrum.
#pragma once

#include "cli/command.h"

Command trimCommand();
