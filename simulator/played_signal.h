// One period of a complex baseband signal that is played in a loop.
//
// In the envelope form, which the device under test works on, the square of a sample's magnitude
// is the momentary power in milliwatts. As it comes from a file or from the status server the
// scale means nothing: the generator's level gives it one.
#pragma once

#include <QMetaType>
#include <QVector>

struct PlayedSignal
{
    QVector<double> iSamples;
    QVector<double> qSamples; // as many as iSamples
    double sampleRate = 0.0;  // Hz

    int size() const { return iSamples.size(); }
};

Q_DECLARE_METATYPE(PlayedSignal)

// The longest signal that is taken, four times the longest that the program makes. It bounds what
// a file or a peer can ask for.
constexpr int longestSignal = 1 << 24;

// Whether a signal of so many samples can be played: the transform knows powers of two only.
constexpr bool isPlayableLength(qint64 count)
{
    return count > 0 && count <= longestSignal && (count & (count - 1)) == 0;
}
