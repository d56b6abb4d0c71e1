// Files that a command is to write, checked before its work begins and not hours later.
#pragma once

#include "cli/arguments.h"

[[noreturn]] void failWriting(const QString& files);

// Those of --csv, --json and --plot and further ones; "-" stands for standard output. Throws
// Failure for one that is named twice, that is read too, or that can't be written where it is to
// stand.
void requireOutputs(const Arguments& arguments, const QStringList& further = {});
