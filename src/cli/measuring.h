// The run of the commands that measure.
#pragma once

#include "cli/command.h"
#include "cli/prepared_measuring.h"

// Reads CONFIG, measures, writes. Throws Failure.
ExitStatus measure(const Session& session, const CurveRequest& wanted);
