// Results as files: JSON and CSV of one, a picture or a report of several.
#pragma once

#include "curves/shown_result.h"

#include <QByteArray>

// Of a file dialog; the first is that which the window opens again.
QString savingFilters();

// Whether a file of this name takes several results; those of one are .json and .csv.
bool takesSeveral(const QString& path);

// What belongs into a file of this name, by its ending; empty for another ending. Pictures need the
// main thread.
QByteArray savedBytes(const QVector<ShownResult>& results, const QString& path);
