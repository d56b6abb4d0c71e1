// Reader of ".wv" waveform files: tags in braces, then I and Q as little-endian 16-bit words.
#pragma once

#include "simulator/played_signal.h"

#include <QString>

// The file's signal; empty when it can't be read or played, and then errorText tells why.
PlayedSignal loadWaveform(const QString& path, QString& errorText);
