// The rules of the notch table: how "Auto-Calculate" lays notches or carriers out, and how a
// typed cell is made into a consistent row. No widget; main thread, because both edit the
// record. Frequencies become bins by truncation toward zero.
#pragma once

#include <QString>

struct MeasurementSetup;

// The most notches that "Auto-Calculate" makes; the range of its input.
constexpr quint32 maxNotchCount = 999;

// Fills the notch list from count, width, offset and depth of the setup. In notch mode the count
// is first cut to what fits the noise bandwidth. Returns false when a notch found no room: the
// list then holds the notches made so far and the count is lower by one.
bool autoCalculateNotches(MeasurementSetup& setup);

// Stores a text typed into a cell of the table and makes the rest of the row follow, inside the
// noise bandwidth. Text that is no number, and a row that does not exist, change nothing; the
// result is false then.
bool editNotchCell(MeasurementSetup& setup, int row, int column, const QString& text);
