// What the graph tells where one points, since the drawing itself has no text: how it is edited,
// what its axes span, and where the noise band ends.
#pragma once

#include <QString>

struct MeasurementSetup;

// One line for each of the three; frequencies in MHz as in the table. Main thread.
QString graphToolTip(const MeasurementSetup& setup);
