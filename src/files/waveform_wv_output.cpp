#include "base/whole_file.h"
#include "files/sample_words.h"
#include "files/waveform_output.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace {

struct Level
{
    double peak = 0.0; // largest magnitude
    double rms = 0.0;
};

Level levelOf(const SignalData& signal, int count)
{
    Level level;
    double sum = 0.0;
    double peakPower = 0.0;
    const double* i = signal.iData().constData();
    const double* q = signal.qData().constData();
    for (int k = 0; k < count; ++k) {
        const double power = i[k] * i[k] + q[k] * q[k];
        peakPower = std::max(peakPower, power);
        sum += power;
    }
    level.peak = std::sqrt(peakPower); // of the largest, for a root keeps the order
    level.rms = std::sqrt(sum / signal.length);
    return level;
}

// Deliberate: adds a half and truncates, which rounds positive values and lifts negative ones;
// -1.7 becomes -1. Stored waveforms are made this way.
double wordValue(double sample, double scale)
{
    return scale * sample + 0.5;
}

} // namespace

QByteArray wvHeader(const QDateTime& now, double rms, qint32 length, quint32 clock)
{
    const QDate date = now.date();
    const QTime time = now.time();
    return QString::asprintf(
               "{TYPE:PHD-WV,0}{COPYRIGHT:%d Kelmar&Ostrin PHD}             "
               "{DATE:%d-%d-%d;%d:%d:%d}{LEVEL OFFS:%0.3lf,%0.3lf}{SAMPLES:%ld}             "
               "{CLOCK:%ld}{WAVEFORM-%ld:#",
               date.year(), date.year(), date.month(), date.day(), time.hour(), time.minute(),
               time.second(), rms, 0.0, long{length}, static_cast<long>(clock), 4L * length + 1L)
        .toUtf8();
}

bool writeWvFile(SignalData signal, const QString& baseName, quint32 clock)
{
    const int count = std::min({signal.length, signal.iData().size(), signal.qData().size()});
    const Level level = levelOf(signal, count);
    const double scale = 32767.0 / level.peak;
    WholeFile file(baseName + QLatin1String(".wv"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        return false;
    }
    file.write(wvHeader(QDateTime::currentDateTime(), level.rms, signal.length, clock));
    const double* i = signal.iData().constData();
    const double* q = signal.qData().constData();
    writeWords(file, 2 * count, [=](int first, int end, double* values) {
        for (int k = first / 2; k < end / 2; ++k) {
            *values++ = wordValue(i[k], scale);
            *values++ = wordValue(q[k], scale);
        }
    });
    file.write("}");
    return file.putInPlace();
}
