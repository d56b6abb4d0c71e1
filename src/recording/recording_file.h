// Opens recordings of any form. Nothing of the samples is read here.
//
// To add a form of files: 1. its reader, a file of its own that makes a Recording of a path, 2. its
// row in the table of recording_file.cpp. Sizes that a file claims are checked against what it
// holds.
#pragma once

#include "recording/recording.h"

// rawType: of files that don't tell it themselves; null for none. Throws RecordingError.
Recording openRecording(const QString& path, const SampleType* rawType);
