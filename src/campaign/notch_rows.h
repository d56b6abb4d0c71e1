// The notches of a campaign. Rows of a configuration come in no order, so notches are numbered from
// 1 by rising centre, and results are matched by centre and width.
#pragma once

#include "setup/notch.h"

#include <QVector>

struct ChannelBand;
struct MeasurementSetup;
struct SignalData;

struct NumberedNotch
{
    int number = 0; // from 1
    Notch notch;
    // Of the signal's spectrum in the channel that reads the notch; 0 if that or the reference
    // channel is too narrow to have one.
    int lines = 0;
};

// All notches of the setup, whose signal has so many samples. None in carrier mode, where rows are
// lone lines.
QVector<NumberedNotch> numberedNotches(const MeasurementSetup& setup, int signalLength);

// Two for each notch: of its reference channel and of the channel in the notch.
QVector<ChannelBand> bandsOf(const QVector<NumberedNotch>& notches);

// Density of the signal in the notch's reference channel over that of the whole signal: 1 for an
// even one. Less where another notch or the end of the band lies in the channel; the ratio is too
// low by as much then. For a notch that has lines.
double referenceFilling(const NumberedNotch& notch, const SignalData& signal, double sampleRate);

// Whether two notches are the same: centre and width agree to a millionth of the width, which is
// more than a file keeps.
bool isSameNotch(double center, double width, double otherCenter, double otherWidth);
