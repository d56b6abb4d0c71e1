// From the words of the command line to the exit status.
#pragma once

#include "cli/console.h"
#include "cli/exit_status.h"

#include <QStringList>

class StopSignals;

// words are those behind the program's name. Prints what there is to tell; throws nothing.
ExitStatus runProgram(const QStringList& words, Console& console, const StopSignals& stop);

// Whether the words ask for a picture, so that the program needs what draws it.
bool asksForPicture(const QStringList& words);
