// Settings as results keep them: sections of keys, texts without their quotes. Main thread.
#pragma once

#include "campaign/npr_result.h"
#include "setup/measurement_setup.h"

ConfigSections configSectionsOf(const MeasurementSetup& setup);

// What isn't there, or doesn't fit its key, has its default, as in a configuration file.
MeasurementSetup setupOf(const ConfigSections& sections);
