// "curve": NPR in all notches over levels.
#pragma once

#include "cli/command.h"

Command curveCommand();
