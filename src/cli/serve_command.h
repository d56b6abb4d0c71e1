// "serve": calculates the signal and serves it to clients until it is stopped.
#pragma once

#include "cli/command.h"

Command serveCommand();
