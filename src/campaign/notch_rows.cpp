#include "campaign/notch_rows.h"

#include "dut/level_sweep.h"
#include "measurement/channels.h"
#include "setup/measurement_setup.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

int linesAround(double center, double bandwidth, double spacing, int signalLength)
{
    const ChannelBand band{center - bandwidth / 2.0, center + bandwidth / 2.0};
    return linesWithin(band, spacing, signalLength).count;
}

// None where the reference channel has none, for then there is nothing to compare with.
int readableLines(const Notch& notch, double spacing, int signalLength)
{
    const ReadingChannels channels = channelsOf(notch);
    const int inReference =
        linesAround(channels.reference, channels.bandwidth, spacing, signalLength);
    return inReference > 0
               ? linesAround(channels.notch(), channels.bandwidth, spacing, signalLength)
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

bool isSameNotch(double center, double width, double otherCenter, double otherWidth)
{
    const double tolerance = 1e-6 * std::abs(width);
    return std::abs(center - otherCenter) <= tolerance && std::abs(width - otherWidth) <= tolerance;
}
