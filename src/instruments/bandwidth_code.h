// Analyzer bandwidths of the series 1, 2, 3, 5, 10, 20, 30, 50, 100 ... Hz as one small
// number, which is also the row of the bandwidth combo boxes. Code 0 means 0 Hz, "Auto".
#pragma once

#include <QtGlobal>

// Code of a bandwidth in whole hertz. Any value is rounded by truncation to its leading
// digit; the digits 4 to 9 all end on the step 5, so 40000 gives the code of 50000.
quint32 codeFromBandwidth(quint32 hertz);

// Bandwidth in hertz of a code. A code beyond the range of the result saturates.
quint32 bandwidthFromCode(quint32 code);
