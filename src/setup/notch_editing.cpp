#include "setup/notch_editing.h"

#include "base/truncation.h"
#include "setup/measurement_setup.h"

#include <algorithm>
#include <utility>

namespace {

enum Column { Center, Width, StartFreq, StopFreq, StartIndex, StopIndex, Depth };

// The bin grid and the noise band of a setup.
struct Band
{
    explicit Band(const MeasurementSetup& setup)
        : binWidth(setup.binWidth()),
          bandwidth(setup.nbwSrate * setup.sampleRate),
          lastBin((setup.fftLength() >> 1) * setup.nbwSrate)
    {
    }

    qint32 binAt(double frequency) const { return truncatedToInt32(frequency / binWidth); }
    double onGrid(double frequency) const { return binAt(frequency) * binWidth; }

    double binWidth;  // Hz
    double bandwidth; // Hz
    double lastBin;   // half the band in bins
};

void makeCarriers(MeasurementSetup& setup)
{
    const Band band(setup);
    const quint32 count = std::min(setup.notchCount, maxNotchCount);
    if (count < 2) {
        return;
    }
    for (quint32 i = 1; i <= count; ++i) {
        Notch notch;
        notch.center = (double(i - 1) / double(count - 1)) * band.bandwidth + setup.notchOffset -
                       band.bandwidth * 0.5;
        notch.startFreq = notch.stopFreq = notch.center;
        notch.startIndex = notch.stopIndex = band.binAt(notch.center);
        setup.notches->insert(static_cast<qint32>(i), notch);
    }
}

void limitNotchCount(MeasurementSetup& setup, double bandwidth)
{
    if (setup.notchWidth > 0.0) {
        const double most = bandwidth / setup.notchWidth - 0.5;
        if (setup.notchCount > most) {
            setup.notchCount = truncatedToUint32(most);
        }
    }
    setup.notchCount = std::min(setup.notchCount, maxNotchCount);
}

// The center of notch i of count, counted from 1: the band in count + 1 equal parts, moved by
// the offset, on the bin grid, not above the upper band edge.
double notchCenter(const MeasurementSetup& setup, const Band& band, quint32 i)
{
    const double center =
        (double(i) / (double(setup.notchCount) + 1.0) - 0.5) * band.bandwidth + setup.notchOffset;
    return std::min(band.onGrid(center), setup.sampleRate * setup.nbwSrate * 0.5);
}

Notch notchAt(double center, double width, double depth, const Band& band)
{
    Notch notch;
    notch.center = center;
    notch.width = width;
    notch.startFreq = center - width * 0.5;
    notch.stopFreq = center + width * 0.5;
    notch.depth = depth;
    notch.startIndex = band.binAt(notch.startFreq);
    if (notch.startIndex < -band.lastBin) {
        notch.startIndex = truncatedToInt32(-band.lastBin);
    }
    notch.stopIndex = band.binAt(notch.stopFreq);
    if (notch.stopIndex > band.lastBin) {
        notch.stopIndex = truncatedToInt32(band.lastBin);
    }
    return notch;
}

bool makeNotches(MeasurementSetup& setup)
{
    const Band band(setup);
    limitNotchCount(setup, band.bandwidth);
    for (quint32 i = 1; i <= setup.notchCount; ++i) {
        const double center = notchCenter(setup, band, i);
        double width = setup.notchWidth;
        const double room = band.bandwidth - center * 2;
        if (!(width < room)) {
            width = room;
            if (room <= 0.0 || setup.notchWidth - band.binWidth > room) {
                --setup.notchCount;
                return false;
            }
        }
        setup.notches->insert(static_cast<qint32>(i),
                              notchAt(center, width, setup.notchDepth, band));
    }
    return true;
}

void store(Notch& notch, int column, const QString& text, double carrier)
{
    const double value = text.toDouble();
    switch (column) {
    case Center:
        notch.center = value * 1e6 - carrier;
        break;
    case Width:
        notch.width = value * 1e6;
        break;
    case StartFreq:
        notch.startFreq = value * 1e6 - carrier;
        break;
    case StopFreq:
        notch.stopFreq = value * 1e6 - carrier;
        break;
    case StartIndex:
        notch.startIndex = text.toInt();
        break;
    case StopIndex:
        notch.stopIndex = text.toInt();
        break;
    case Depth:
        notch.depth = value;
        break;
    default:
        break;
    }
}

// In carrier mode only the two visible columns act.
void storeCarrier(Notch& notch, int column, const QString& text, double carrier, double binWidth)
{
    if (column == Center) {
        notch.center = text.toDouble() * 1e6 - carrier;
    } else if (column == StartIndex) {
        notch.startIndex = notch.stopIndex = text.toInt();
        notch.center = notch.startFreq = notch.stopFreq = notch.startIndex * binWidth;
    }
}

void followCenterAndWidth(Notch& notch, const Band& band)
{
    // Deliberate: no mirror images. The lower bound keeps the lower edge in the band, the upper one
    // lets the upper edge stand out by a width. Stored tables rely on it.
    notch.center = std::max(notch.center, (notch.width - band.bandwidth) * 0.5);
    notch.center = std::min(notch.center, (band.bandwidth + notch.width) * 0.5);
    notch.center = band.onGrid(notch.center);
    notch.width = band.onGrid(notch.width);
    notch.startFreq = notch.center - notch.width * 0.5;
    notch.stopFreq = notch.center + notch.width * 0.5;
    notch.startIndex = band.binAt(notch.startFreq);
    notch.stopIndex = band.binAt(notch.stopFreq);
}

void followEdges(Notch& notch, const Band& band)
{
    if (notch.stopFreq < notch.startFreq) {
        std::swap(notch.startFreq, notch.stopFreq);
    }
    notch.startFreq = std::max(notch.startFreq, band.bandwidth * -0.5);
    notch.stopFreq = std::min(notch.stopFreq, band.bandwidth * 0.5);
    notch.startIndex = band.binAt(notch.startFreq);
    notch.startFreq = notch.startIndex * band.binWidth;
    notch.stopIndex = band.binAt(notch.stopFreq);
    notch.stopFreq = notch.stopIndex * band.binWidth;
    notch.width = notch.stopFreq - notch.startFreq;
    notch.center = (notch.startFreq + notch.stopFreq) * 0.5;
}

void followBins(Notch& notch, const Band& band)
{
    if (notch.stopIndex < notch.startIndex) {
        std::swap(notch.startIndex, notch.stopIndex);
    }
    if (notch.stopIndex > band.lastBin) {
        notch.stopIndex = truncatedToInt32(band.lastBin - 1.0);
    }
    if (notch.startIndex < -band.lastBin) {
        notch.startIndex = truncatedToInt32(1.0 - band.lastBin);
    }
    notch.startFreq = notch.startIndex * band.binWidth;
    notch.stopFreq = notch.stopIndex * band.binWidth;
    notch.width = notch.stopFreq - notch.startFreq;
    notch.center = (notch.startFreq + notch.stopFreq) * 0.5;
}

void makeConsistent(Notch& notch, int column, const Band& band)
{
    switch (column) {
    case Center:
    case Width:
        followCenterAndWidth(notch, band);
        break;
    case StartFreq:
    case StopFreq:
        followEdges(notch, band);
        break;
    case StartIndex:
    case StopIndex:
        followBins(notch, band);
        break;
    default:
        break; // the depth goes unchecked, so a positive value stands
    }
}

} // namespace

bool autoCalculateNotches(MeasurementSetup& setup)
{
    setup.notches->clear();
    if (setup.notchOrCarrier == NotchOrCarrier::Carrier) {
        makeCarriers(setup);
        return true;
    }
    return makeNotches(setup);
}

bool editNotchCell(MeasurementSetup& setup, int row, int column, const QString& text)
{
    bool isNumber = false;
    text.toDouble(&isNumber);
    if (!isNumber || row < 0 || row >= setup.notches->items.size()) {
        return false;
    }
    const Band band(setup);
    Notch& notch = setup.notches->items[row];
    if (setup.notchOrCarrier == NotchOrCarrier::Carrier) {
        storeCarrier(notch, column, text, setup.effectiveFrequency(), band.binWidth);
    } else {
        store(notch, column, text, setup.effectiveFrequency());
    }
    makeConsistent(notch, column, band);
    return true;
}
