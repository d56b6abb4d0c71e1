// Recordings and how they were read, for people.
#pragma once

#include "campaign/npr_result.h"
#include "cli/console.h"

// A line each.
QString recordingTable(const QVector<RecordingFacts>& recordings, const Console& console);
