#include "campaign/notch_rows.h"

#include "dut/level_sweep.h"
#include "measurement/channels.h"
#include "setup/measurement_setup.h"
#include "signal/stimulus_statistics.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>

namespace {

ChannelBand bandAround(double center, const ReadingChannels& channels)
{
    return {center - channels.bandwidth / 2.0, center + channels.bandwidth / 2.0};
}

ChannelBand referenceBand(const Notch& notch)
{
    const ReadingChannels channels = channelsOf(notch);
    return bandAround(channels.reference, channels);
}

ChannelBand notchBand(const Notch& notch)
{
    const ReadingChannels channels = channelsOf(notch);
    return bandAround(channels.notch(), channels);
}

// None where the reference channel has none, for then there is nothing to compare with.
int readableLines(const Notch& notch, double spacing, int signalLength)
{
    return linesWithin(referenceBand(notch), spacing, signalLength).count > 0
               ? linesWithin(notchBand(notch), spacing, signalLength).count
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

QVector<ChannelBand> bandsOf(const QVector<NumberedNotch>& notches)
{
    QVector<ChannelBand> bands;
    for (const NumberedNotch& numbered : notches) {
        bands << referenceBand(numbered.notch) << notchBand(numbered.notch);
    }
    return bands;
}

double referenceFilling(const NumberedNotch& notch, const SignalData& signal, double sampleRate)
{
    const SomeLines::Range range =
        linesWithin(referenceBand(notch.notch), sampleRate / signal.length, signal.length);
    const double* const first = signal.magnitude.constData() + signal.length / 2 + range.first;
    const double power = std::inner_product(first, first + range.count, first, 0.0);
    // The mean line of the signal, weighted by its power so that empty notches don't count.
    const LineSums all = lineSumsOf(signal);
    return power * all.power / (all.square * notch.lines);
}

bool isSameNotch(double center, double width, double otherCenter, double otherWidth)
{
    const double tolerance = 1e-6 * std::abs(width);
    return std::abs(center - otherCenter) <= tolerance && std::abs(width - otherWidth) <= tolerance;
}
