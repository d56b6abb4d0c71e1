#include "campaign/notch_rows.h"

#include "dut/level_sweep.h"
#include "measurement/channels.h"
#include "setup/measurement_setup.h"

#include <algorithm>
#include <cmath>
#include <tuple>

QVector<NumberedNotch> numberedNotches(const MeasurementSetup& setup, int signalLength)
{
    if (setup.notchOrCarrier != NotchOrCarrier::Notch) {
        return {};
    }
    QList<Notch> rows = setup.notches->items;
    std::stable_sort(rows.begin(), rows.end(), [](const Notch& a, const Notch& b) {
        return std::tie(a.center, a.width) < std::tie(b.center, b.width);
    });
    QVector<NumberedNotch> numbered;
    for (const Notch& row : qAsConst(rows)) {
        const ReadingChannels channels = channelsOf(row);
        const ChannelBand band{channels.notch() - channels.bandwidth / 2.0,
                               channels.notch() + channels.bandwidth / 2.0};
        const double spacing = setup.sampleRate / signalLength;
        numbered << NumberedNotch{numbered.size() + 1, row,
                                  linesWithin(band, spacing, signalLength).count};
    }
    return numbered;
}

bool isSameNotch(double center, double width, double otherCenter, double otherWidth)
{
    const double tolerance = 1e-6 * std::abs(width);
    return std::abs(center - otherCenter) <= tolerance && std::abs(width - otherWidth) <= tolerance;
}
