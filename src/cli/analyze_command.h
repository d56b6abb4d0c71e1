// "analyze": NPR in the notches from recordings of the device's output.
#pragma once

#include "cli/command.h"

Command analyzeCommand();
