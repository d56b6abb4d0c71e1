// The writer of magnitudes and phases as text, see loadMagnitudePhaseFile.
#pragma once

class QString;
struct SignalData;

// False, and what stood in its place stays, when the file can't be opened or written whole. The
// numbers are read back as the same doubles. Any thread.
bool saveMagnitudePhaseFile(const SignalData& signal, const QString& path);
