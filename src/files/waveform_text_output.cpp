#include "files/waveform_output.h"
#include "setup/whole_file.h"

#include <QTextStream>

#include <algorithm>
#include <cmath>

namespace {

constexpr double writtenPeak = 2.5;

// The largest absolute value, never below 0.
double peakOf(const QVector<double>& samples)
{
    double highest = 0.0;
    double lowest = 0.0;
    for (const double sample : samples) {
        highest = std::max(highest, sample);
        lowest = std::min(lowest, sample);
    }
    return std::max(std::abs(highest), std::abs(lowest));
}

void writeLines(QIODevice& file, const QVector<double>& samples, double factor)
{
    QTextStream out(&file);
    for (const double sample : samples) {
        out << QString::number(sample * factor, 'f', 6) << '\n';
    }
}

} // namespace

void writeIQTextFiles(SignalData signal, const QString& baseName)
{
    // An all-zero signal has an infinite factor and is written as "nan"; no guard, by design.
    const double factor = writtenPeak / std::max(peakOf(signal.iData()), peakOf(signal.qData()));
    WholeFile iFile(baseName + QLatin1String(".i"));
    WholeFile qFile(baseName + QLatin1String(".q"));
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Text;
    if (!iFile.open(mode) || !qFile.open(mode)) {
        return;
    }
    writeLines(iFile, signal.iData(), factor);
    writeLines(qFile, signal.qData(), factor);
    putBothInPlace(iFile, qFile);
}
