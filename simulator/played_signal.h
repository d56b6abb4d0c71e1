// One period of the signal that is played in a loop. The scale of its samples means nothing: the
// generator's level gives it one.
#pragma once

#include "dut/envelope.h"

#include <QMetaType>

using PlayedSignal = Envelope;

Q_DECLARE_METATYPE(PlayedSignal)

// The longest signal that is taken, four times the longest that the program makes. It bounds what
// a file or a peer can ask for.
constexpr int longestSignal = 1 << 24;

// Whether a signal of so many samples can be played: the transform knows powers of two only.
constexpr bool isPlayableLength(qint64 count)
{
    return count > 0 && count <= longestSignal && (count & (count - 1)) == 0;
}
