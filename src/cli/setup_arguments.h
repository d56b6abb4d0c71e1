// The record that a command works on: CONFIG with what --set and --notches make of it.
#pragma once

#include "cli/arguments.h"
#include "cli/console.h"
#include "setup/measurement_setup.h"

// --set and --notches, for the options of every command that takes CONFIG.
Options setupOptions();

// Whether a command takes positional arguments behind CONFIG.
enum class Further { Refused, Taken };

// The first positional argument. The rows of the notch table come sorted by their centre,
// so that number n of the list is items[n - 1]. What the reader passed over, and what "--notches"
// couldn't do, is told on standard error. Throws Failure.
MeasurementSetup readSetup(const Arguments& arguments, Console& console,
                           Further further = Further::Refused);

// The rows, for a command that needs some: throws Failure, saying how to make some, without.
const QList<Notch>& requireNotches(const MeasurementSetup& setup);
