// A stored trace of the spectrum analyzer: a text file without a header, one point a line,
// "frequency;level" in Hz and dB or dBm; further fields are ignored. Numbers are in the C locale,
// text that is no number counts as 0. Any thread.
#pragma once

#include <QString>
#include <QVector>

#include <atomic>

struct AnalyzerTrace
{
    int pointCount() const { return frequencies.size(); }

    QVector<double> frequencies; // Hz, relative to the middle between the first and the last
    QVector<double> levels;      // dB or dBm, one for each frequency
};

// At most mostPoints points, in the order of the file. A line with fewer than two fields is no
// point, and of a line only the first 65535 bytes count. Without points when the file can't be
// opened, is none (a device, a folder) or has none, and when abandoned becomes true meanwhile.
AnalyzerTrace readAnalyzerTrace(const QString& fileName, int mostPoints,
                                const std::atomic<bool>* abandoned = nullptr);
