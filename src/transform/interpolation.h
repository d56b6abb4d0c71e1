// More samples of a periodic signal, between those that are there. No state; any thread.
#pragma once

#include <QVector>

// re + j im, both of a length that is a power of two, grow to factor (a power of two) times the
// samples of the same period. The values between are those of the only periodic signal without
// lines beyond half the former rate; the line at minus half of it stays one line. Factor 1 changes
// nothing. Throws std::bad_alloc when memory runs out.
void interpolate(QVector<double>& re, QVector<double>& im, int factor);
