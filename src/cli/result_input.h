// Results that were written before.
#pragma once

#include "campaign/npr_result.h"

// Throws Failure for what can't be read and for what is no result.
NprResult readResult(const QString& path);
