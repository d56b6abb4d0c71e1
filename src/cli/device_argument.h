// A simulated device as an option's value: "DEVICE[,KEY=VALUE...]".
#pragma once

#include "dut/chain.h"

// what names the option in a failure, as in "--simulate". Throws Failure for a device or key that
// isn't known, a key of another device, and a value out of its bounds.
Chain chainOf(const QString& text, const QString& what);

// Devices and their keys, for help texts.
QString deviceHelp();
