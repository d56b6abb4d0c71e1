// "measure": NPR in all notches at the present level.
#pragma once

#include "cli/command.h"

Command measureCommand();
