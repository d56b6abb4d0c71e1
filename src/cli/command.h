// A command of the program.
//
// To add one: 1. its function in a file of its own, NAME_command.cpp, declared in commands.h, which
// is given what was typed and where to print, and throws a Failure where it can't go on; 2. its row
// in command_table.cpp.
// Options, help and the check of what is typed follow from the row.
#pragma once

#include "base/stop_signals.h"
#include "cli/arguments.h"
#include "cli/console.h"
#include "cli/exit_status.h"
#include "cli/option.h"

#include <QVector>

struct Session
{
    const Arguments& arguments;
    Console& console;
    const StopSignals& stop; // asked between two steps of long work
};

struct Command
{
    QString name;
    QString summary;    // one line
    QString positional; // what stands before the options, as in "CONFIG"
    QString example;    // behind "notchbench-cli "
    Options options;    // but for --help
    ExitStatus (*run)(const Session& session);
};

const QVector<Command>& commandTable();
