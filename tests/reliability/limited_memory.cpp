// Jobs that run out of memory in their midst.
#include "reliability/limited_bench.h"

const QVector<LimitedScenario> memoryScenarios = {};
