// The generator behind the random phases: a linear congruential one with 15 bits a draw.
//
// Which generator this is decides the waveform of every stored seed, so it is never to be
// changed. Each source makes its own, so that sources on several threads draw undisturbed.
#pragma once

#include <QtGlobal>

class RuntimeRandom
{
public:
    explicit RuntimeRandom(quint32 seed) : state(seed) {}

    // 0 to 32767.
    quint32 next()
    {
        state = state * 214013U + 2531011U; // modulo 2^32
        return (state >> 16) & 0x7FFFU;
    }

    // Passes over the next count draws at once, by squaring the step.
    void skip(quint32 count)
    {
        quint32 factor = 214013U;
        quint32 summand = 2531011U;
        for (; count > 0; count /= 2) {
            if (count % 2 == 1) {
                state = state * factor + summand;
            }
            summand = summand * factor + summand;
            factor = factor * factor;
        }
    }

private:
    quint32 state;
};
