#include "campaign/notch_rows.h"

#include "dut/level_sweep.h"
#include "measurement/channels.h"
#include "setup/measurement_setup.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

namespace {

SomeLines::Range linesAround(double center, double bandwidth, double spacing, int signalLength)
{
    const ChannelBand band{center - bandwidth / 2.0, center + bandwidth / 2.0};
    return linesWithin(band, spacing, signalLength);
}

// None where the reference channel has none, for then there is nothing to compare with.
int readableLines(const Notch& notch, double spacing, int signalLength)
{
    const ReadingChannels channels = channelsOf(notch);
    const int inReference =
        linesAround(channels.reference, channels.bandwidth, spacing, signalLength).count;
    return inReference > 0
               ? linesAround(channels.notch(), channels.bandwidth, spacing, signalLength).count
               : 0;
}

} // namespace

QVector<NumberedNotch> numberedNotches(const MeasurementSetup& setup, int signalLength)
{
    if (setup.notchOrCarrier != NotchOrCarrier::Notch) {
        return {};
    }
    QList<Notch> rows = setup.notches->items;
    std::stable_sort(rows.begin(), rows.end(), [](const Notch& a, const Notch& b) {
        return std::tie(a.center, a.width) < std::tie(b.center, b.width);
    });
    const double spacing = setup.sampleRate / signalLength;
    QVector<NumberedNotch> numbered;
    for (const Notch& row : qAsConst(rows)) {
        numbered << NumberedNotch{numbered.size() + 1, row,
                                  readableLines(row, spacing, signalLength)};
    }
    return numbered;
}

double referenceFilling(const NumberedNotch& notch, const SignalData& signal, double sampleRate)
{
    // The mean line of the signal, weighted by its power so that empty notches don't count.
    double sum = 0.0;
    double squares = 0.0;
    for (const double magnitude : signal.magnitude) {
        const double power = magnitude * magnitude;
        sum += power;
        squares += power * power;
    }
    const ReadingChannels channels = channelsOf(notch.notch);
    const SomeLines::Range range = linesAround(channels.reference, channels.bandwidth,
                                               sampleRate / signal.length, signal.length);
    const double* const first = signal.magnitude.constData() + signal.length / 2 + range.first;
    const double power = std::inner_product(first, first + range.count, first, 0.0);
    return power * sum / (squares * notch.lines);
}

bool isSameNotch(double center, double width, double otherCenter, double otherWidth)
{
    const double tolerance = 1e-6 * std::abs(width);
    return std::abs(center - otherCenter) <= tolerance && std::abs(width - otherWidth) <= tolerance;
}
