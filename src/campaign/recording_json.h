// The members that results from recordings have beside those of all results.
#pragma once

#include "campaign/json_values.h"
#include "campaign/npr_result.h"

void addTo(QJsonObject& point, const RecordedReading& reading);
void addTo(QJsonObject& result, const QVector<RecordingFacts>& recordings);

// None of a point without.
std::optional<RecordedReading> recordedFrom(const Member& point);
QVector<RecordingFacts> recordingsFrom(const Member& result);
