#include "base/parallel.h"
#include "base/whole_file.h"
#include "files/extremes.h"
#include "files/fixed_decimals.h"
#include "files/waveform_output.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double writtenPeak = 2.5;

// The largest absolute value, never below 0.
double peakOf(const QVector<double>& samples)
{
    const Extremes ends = extremesOf(samples.constData(), samples.size(), {0.0, 0.0});
    return std::max(std::abs(ends.largest), std::abs(ends.smallest));
}

void writeLines(QIODevice& file, const QVector<double>& samples, double factor)
{
    constexpr int pieceSize = 1 << 17;
    QByteArray piece(pieceSize + longestFixedDecimals + 1, Qt::Uninitialized);
    char* const begin = piece.data();
    char* end = begin;
    for (const double sample : samples) {
        end = putFixedDecimals(sample * factor, end);
        *end++ = '\n';
        if (end - begin >= pieceSize) {
            file.write(begin, end - begin);
            end = begin;
        }
    }
    file.write(begin, end - begin);
}

} // namespace

bool writeIQTextFiles(SignalData signal, const QString& baseName)
{
    // An all-zero signal has an infinite factor and is written as "nan"; no guard, by design.
    const double factor = writtenPeak / std::max(peakOf(signal.iData()), peakOf(signal.qData()));
    WholeFile iFile(baseName + QLatin1String(".i"));
    WholeFile qFile(baseName + QLatin1String(".q"));
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Text;
    if (!iFile.open(mode) || !qFile.open(mode)) {
        return false;
    }
    inParallel(2, usefulThreads(), [&](Pieces& files) {
        for (quint64 file = 0; files.take(file);) {
            writeLines(file == 0 ? iFile : qFile, file == 0 ? signal.iData() : signal.qData(),
                       factor);
        }
    });
    return putBothInPlace(iFile, qFile);
}
