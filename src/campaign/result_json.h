// Results as JSON files. The form is described in docs/manual/results.html and
// docs/result.schema.json.
//
// To add a member: its line in the writer, its line in the reader, its property in the schema. A
// reader passes over members that it doesn't know.
#pragma once

#include "campaign/npr_result.h"
#include "campaign/result_error.h"

#include <QByteArray>

// Numbers with all their digits; a missing one is null. The same result gives the same bytes.
QByteArray resultToJson(const NprResult& result);

// Throws ResultError with what is wrong, for bytes that aren't such a result or are more than
// mostResultBytes.
NprResult resultFromJson(const QByteArray& json);

// Throws ResultError too for what can't be read; a pipe, which may never end, is such a thing.
NprResult resultFromFile(const QString& path);

constexpr int mostResultBytes = 256 * 1048576;
