#include "signal/notch_operations.h"

#include "base/truncation.h"
#include "setup/measurement_setup.h"

#include <algorithm>
#include <cmath>

namespace {

// -105 dB on the amplitude, what "nothing there" means in this program.
double suppression()
{
    return std::pow(10.0, -5.25);
}

bool before(const Notch& a, const Notch& b)
{
    return b.center > a.center;
}

void exchange(QList<Notch>& rows, int a, int b)
{
    rows.swapItemsAt(a, b);
}

// Puts the median of the first, middle and last row into the middle one. Returns whether a
// range of so few rows is thereby sorted.
bool sortThree(QList<Notch>& rows, int first, int end, int pivot)
{
    const int span = end - first + 1;
    if (before(rows.at(end), rows.at(first))) {
        exchange(rows, end, first);
    }
    if (span == 2) {
        return true;
    }
    if (before(rows.at(pivot), rows.at(first))) {
        exchange(rows, pivot, first);
    }
    if (before(rows.at(end), rows.at(pivot))) {
        exchange(rows, end, pivot);
    }
    return span == 3;
}

// Splits the rows around the pivot at end and returns the place that the pivot got.
int partition(QList<Notch>& rows, int low, int end)
{
    int high = end - 1;
    while (low < high) {
        while (before(rows.at(low), rows.at(end))) {
            ++low;
        }
        while (high > low && before(rows.at(end), rows.at(high))) {
            --high;
        }
        if (low < high) {
            exchange(rows, low, high);
            ++low;
            --high;
        }
    }
    if (before(rows.at(low), rows.at(end))) {
        ++low;
    }
    exchange(rows, low, end);
    return low;
}

// Median-of-three quicksort of the rows first to end, both inclusive. Its way of exchanging
// settles the order of rows of equal center.
void quicksort(QList<Notch>& rows, int first, int end)
{
    while (end > first) {
        const int pivot = first + (end - first + 1) / 2;
        if (sortThree(rows, first, end, pivot)) {
            return;
        }
        exchange(rows, pivot, end);
        const int middle = partition(rows, first, end);
        quicksort(rows, first, middle - 1);
        first = middle + 1;
    }
}

void cutNotches(SignalData& signal, const QList<Notch>& notches, quint32 half)
{
    for (const Notch& notch : notches) {
        signal.attenuate(half + static_cast<quint32>(notch.startIndex),
                         half + static_cast<quint32>(notch.stopIndex),
                         std::pow(10.0, notch.depth * 0.05));
    }
}

// Deliberate: the line stands one bin above the index that the table shows, at half +
// startIndex + 1. Stored setups and the levels measured with them rely on it.
void keepCarriers(SignalData& signal, const QList<Notch>& carriers, quint32 half)
{
    const double factor = suppression();
    const auto index = [&carriers, half](int row) {
        return half + static_cast<quint32>(carriers.at(row).startIndex);
    };
    const int last = carriers.size() - 1;
    signal.attenuate(0, index(0), factor);
    signal.attenuate(index(last) + 2, static_cast<quint32>(signal.length), factor);
    for (int row = 0; row < last; ++row) {
        signal.attenuate(index(row) + 2, index(row + 1), factor);
    }
}

} // namespace

void NotchList::sort()
{
    quicksort(items, 0, items.size() - 1);
}

// Deliberate: bin numbers are unsigned, and a sum that comes out negative wraps to a huge value. As
// the first bin it makes the range empty, as the last it is clipped to the end.
void SignalData::attenuate(quint32 first, quint32 last, double factor)
{
    const auto bins = static_cast<quint32>(magnitude.size());
    const quint32 count = std::min(static_cast<quint32>(length), bins);
    if (count == 0) {
        return;
    }
    const quint32 end = std::min(last, count - 1);
    if (first > end) {
        return;
    }
    double* bin = magnitude.data();
    for (quint32 i = first; i <= end; ++i) {
        bin[i] *= factor;
    }
}

void SignalData::applyNotches(NotchList list, bool carrierMode)
{
    if (list.items.isEmpty()) {
        return;
    }
    const quint32 half = static_cast<quint32>(length) >> 1;
    if (carrierMode) {
        list.sort();
        keepCarriers(*this, list.items, half);
    } else {
        cutNotches(*this, list.items, half);
    }
}

void suppressOutOfBand(SignalData& signal, const MeasurementSetup& setup)
{
    if (!(setup.nbwSrate < 1.0) || setup.notchOrCarrier != NotchOrCarrier::Notch) {
        return;
    }
    // Deliberate: N is that of the setup, also for a signal from a file of another length.
    const double half = setup.fftLength() >> 1;
    const double factor = suppression();
    signal.attenuate(0, truncatedToUint32(half - half * setup.nbwSrate), factor);
    signal.attenuate(truncatedToUint32(half * setup.nbwSrate + half), setup.fftLength(), factor);
}
