#include "recording/notch_channels.h"

#include <algorithm>

namespace {

FrequencyBand widened(FrequencyBand band, double by)
{
    return {band.low - by, band.high + by};
}

Bands recorded(const Bands& offsets, const RecordingView& view)
{
    Bands bands;
    for (const FrequencyBand& band : offsets) {
        bands << seen(band, view);
    }
    std::sort(bands.begin(), bands.end(),
              [](const FrequencyBand& a, const FrequencyBand& b) { return a.low < b.low; });
    return without(within(bands, view.range), {-view.guard, view.guard});
}

} // namespace

NotchChannels channelsOf(const RecordedSignal& signal, int gap, const RecordingView& view)
{
    const FrequencyBand notch = signal.gaps.at(gap);
    const FrequencyBand outer = widened(notch, view.guard);
    Bands beside{{outer.low - notch.width(), outer.low}, {outer.high, outer.high + notch.width()}};
    beside = within(beside, widened(signal.band, -view.guard));
    for (const FrequencyBand& other : signal.gaps) {
        beside = without(beside, widened(other, view.guard));
    }
    const FrequencyBand place = seen(notch, view);
    NotchChannels channels;
    channels.beside = recorded(beside, view);
    channels.within = recorded(within({widened(notch, -view.guard)}, signal.band), view);
    channels.isRecorded = place.low >= view.range.low && place.high <= view.range.high;
    return channels;
}

bool tellsInversion(const RecordedSignal& signal, int gap)
{
    const FrequencyBand notch = signal.gaps.at(gap);
    const FrequencyBand image{-notch.high, -notch.low};
    const bool isCovered =
        std::any_of(signal.gaps.begin(), signal.gaps.end(), [&image](const FrequencyBand& other) {
            return other.low < image.high && other.high > image.low;
        });
    return !isCovered && image.low > signal.band.low && image.high < signal.band.high;
}

FrequencyBand seen(FrequencyBand offsets, const RecordingView& view)
{
    const FrequencyBand scaled{offsets.low * view.scale, offsets.high * view.scale};
    return view.isInverted ? FrequencyBand{view.center - scaled.high, view.center - scaled.low}
                           : FrequencyBand{view.center + scaled.low, view.center + scaled.high};
}
