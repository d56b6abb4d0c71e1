// A simulated device as an option's value: "DEVICE[,KEY=VALUE...]".
#pragma once

#include "cli/option.h"
#include "dut/chain.h"

#include <QStringList>

// what names the option in a failure, as in "--simulate". Throws Failure for a device or key that
// isn't known, a key of another device, and a value out of its bounds.
Chain chainOf(const QString& text, const QString& what);

// That it may have, its own first; none of a device that isn't known.
QStringList keysOfDevice(const QString& device);

// Of all devices, for help texts: unit, meaning and default of each.
Options deviceKeys();
