// "plot": results drawn together.
#pragma once

#include "cli/command.h"

Command plotCommand();
