#include "recording/clock_error.h"

#include "transform/pi.h"
#include "transform/transform.h"

#include <algorithm>
#include <cmath>

namespace {

using Value = ComplexBuffer::Element;

constexpr double mostError = 1.2e-4; // of the period, either way
constexpr qint64 usualStretch = 8192;
constexpr qint64 shortestStretch = 1024;
constexpr double leastCoherence = 0.3;
constexpr int refinements = 4; // of a slope, each ten times nearer

Value turned(Value value, double radians)
{
    return plainProduct(value, {std::cos(radians), std::sin(radians)});
}

ComplexBuffer weightedTransform(ComplexBuffer stretch)
{
    const auto length = static_cast<double>(stretch.size());
    for (quint64 k = 0; k < stretch.size(); ++k) {
        const double turn = 2.0 * pi * static_cast<double>(k) / length;
        const double weight = 0.5 - 0.5 * std::cos(turn);
        stretch[k] = {stretch[k].real() * weight, stretch[k].imag() * weight};
    }
    fft(stretch);
    return stretch;
}

ComplexBuffer transformOf(const SampleReader& reader, qint64 first, qint64 length)
{
    return weightedTransform(reader.samples(first, length, length));
}

// How a stretch differs from an earlier one: later by a part of a sample, and turned.
struct Shift
{
    double samples = 0.0;
    double turnOfLow = 0.0; // at the ends of the band, radians
    double turnOfHigh = 0.0;
    double coherence = 0.0; // 0 to 1
};

// Products of the lines of two stretches of the same length.
class CrossSpectrum
{
public:
    CrossSpectrum(const ComplexBuffer& one, const ComplexBuffer& other, LineRange range)
        : length(static_cast<int>(one.size())), lines(range)
    {
        double onePower = 0.0;
        double otherPower = 0.0;
        for (int k = lines.first; k <= lines.last; ++k) {
            // The transform has a positive exponent, so the value of a line stands at its negative.
            const auto at = static_cast<quint64>((length - k) % length);
            products.push_back(plainProduct(other[at], std::conj(one[at])));
            onePower += std::norm(one[at]);
            otherPower += std::norm(other[at]);
        }
        power = std::sqrt(onePower * otherPower);
    }

    Shift shift(int mostSamples)
    {
        Shift found;
        const int whole = peak(mostSamples);
        turn(2.0 * pi * whole / length);
        double slope = steepness();
        turn(-slope);
        for (int k = 0; k < refinements; ++k) {
            const double rest = residualSlope(sum());
            turn(-rest);
            slope += rest;
        }
        const Value mean = sum();
        found.coherence = power > 0.0 ? std::abs(mean) / power : 0.0;
        found.samples = whole - slope * length / (2.0 * pi);
        const double middle = std::arg(mean);
        const double center = 0.5 * (lines.first + lines.last);
        const double whereSlope = -2.0 * pi * found.samples / length;
        // Of the mean's line the turn is that of the mean, with the shift put back.
        const double atCenter = middle + (slope - 2.0 * pi * whole / length) * center;
        found.turnOfLow = atCenter + whereSlope * (lines.first - center);
        found.turnOfHigh = atCenter + whereSlope * (lines.last - center);
        return found;
    }

private:
    // The shift in whole samples at which the stretches are most alike.
    int peak(int mostSamples) const
    {
        ComplexBuffer correlation(static_cast<quint64>(length));
        for (int k = lines.first; k <= lines.last; ++k) {
            correlation[static_cast<quint64>((k + length) % length)] =
                products[static_cast<std::size_t>(k - lines.first)];
        }
        fft(correlation);
        int best = 0;
        double highest = -1.0;
        for (int shift = -mostSamples; shift <= mostSamples; ++shift) {
            const double here =
                std::norm(correlation[static_cast<quint64>((shift + length) % length)]);
            if (here > highest) {
                highest = here;
                best = shift;
            }
        }
        return best;
    }

    // Turns line k by k times so many radians.
    void turn(double radians)
    {
        for (std::size_t n = 0; n < products.size(); ++n) {
            products[n] = turned(products[n], radians * (lines.first + static_cast<int>(n)));
        }
    }

    // Radians from line to line.
    double steepness() const
    {
        Value sum;
        for (std::size_t n = 1; n < products.size(); ++n) {
            sum += plainProduct(products[n], std::conj(products[n - 1]));
        }
        return std::arg(sum);
    }

    Value sum() const
    {
        Value all;
        for (const Value& product : products) {
            all += product;
        }
        return all;
    }

    // What a straight line through the small turns that are left has of it, least squares.
    double residualSlope(Value mean) const
    {
        const double center = 0.5 * (lines.first + lines.last);
        const Value back = std::conj(mean) / std::abs(mean);
        double moment = 0.0;
        double weight = 0.0;
        for (std::size_t n = 0; n < products.size(); ++n) {
            const double place = lines.first + static_cast<double>(n) - center;
            const Value product = plainProduct(products[n], back);
            moment += product.imag() * place;
            weight += std::abs(product) * place * place;
        }
        return weight > 0.0 ? moment / weight : 0.0;
    }

    const int length;
    const LineRange lines;
    std::vector<Value> products;
    double power = 0.0;
};

// In turns, 0 to 1/2.
double fractionalTurn(double radians)
{
    const double turns = radians / (2.0 * pi);
    return std::abs(turns - std::round(turns));
}

class PeriodSearch
{
public:
    PeriodSearch(const SampleReader& itsReader, qint64 itsFirst, qint64 itsStretch, int itsMost,
                 LineRange itsLines)
        : reader(itsReader),
          first(itsFirst),
          stretch(itsStretch),
          mostShift(itsMost),
          lines(itsLines),
          beginning(transformOf(reader, first, stretch))
    {
    }

    std::optional<MeasuredPeriod> find(double nominal) const
    {
        constexpr qint64 growth = 64; // a period's error of 1/64 of the search is enough for it
        constexpr double mostTurns = 0.1;
        MeasuredPeriod found{nominal, 0.0};
        for (qint64 periods = 1;; periods *= growth) {
            const qint64 most = mostPeriods(found.samples);
            periods = std::min(periods, most);
            const auto apart = std::llround(static_cast<double>(periods) * found.samples);
            const Shift shift = shiftAfter(apart);
            // Not-a-number comes of values whose squares are beyond all bounds.
            if (!(shift.coherence > leastCoherence && std::abs(shift.samples) <= mostShift + 1.0)) {
                return std::nullopt;
            }
            found.samples =
                (static_cast<double>(apart) + shift.samples) / static_cast<double>(periods);
            const double turns =
                std::max(fractionalTurn(shift.turnOfLow), fractionalTurn(shift.turnOfHigh));
            const bool isWhole = apart == std::llround(static_cast<double>(periods) * nominal);
            const bool isFollowed = found.slip && isWhole && turns < mostTurns;
            found.slip = isFollowed ? std::make_optional(turns / static_cast<double>(periods))
                                    : std::nullopt;
            if (periods == most) {
                return found;
            }
        }
    }

private:
    qint64 mostPeriods(double period) const
    {
        const auto room =
            static_cast<double>(reader.recording().samples - first - stretch - mostShift);
        return std::max<qint64>(1, static_cast<qint64>(room / period));
    }

    Shift shiftAfter(qint64 samples) const
    {
        return CrossSpectrum(beginning, transformOf(reader, first + samples, stretch), lines)
            .shift(mostShift);
    }

    const SampleReader& reader;
    const qint64 first;
    const qint64 stretch;
    const int mostShift;
    const LineRange lines;
    const ComplexBuffer beginning;
};

// Of a transform of the stretches.
LineRange linesWithin(FrequencyBand band, double sampleRate, qint64 stretch)
{
    const double half = 0.5 * sampleRate;
    return linesIn({std::max(band.low, -half), std::min(band.high, half)},
                   sampleRate / static_cast<double>(stretch));
}

bool areEnough(LineRange lines)
{
    constexpr int fewest = 8;
    return lines.last - lines.first >= fewest;
}

// Long enough for a shift of so many samples to leave most of it in place.
bool holdsShift(qint64 stretch, int mostShift)
{
    return stretch >= qint64{16} * mostShift;
}

qint64 stretchFor(int mostShift)
{
    qint64 stretch = usualStretch;
    while (!holdsShift(stretch, mostShift)) {
        stretch *= 2;
    }
    return stretch;
}

// A recording beside the signal that was played.
class Drift
{
public:
    Drift(const SignalPeriod& itsPlayed, const SampleReader& itsReader, qint64 itsFirst,
          double itsTurns, SignalPlace itsPlace)
        : played(itsPlayed), reader(itsReader), first(itsFirst), turns(itsTurns), place(itsPlace)
    {
    }

    // Of a stretch that begins so many samples behind the first; none where it isn't the signal's.
    std::optional<double> at(qint64 sample, qint64 stretch, FrequencyBand band, int mostShift) const
    {
        ComplexBuffer recorded = aroundCarrier(reader, turns, first + sample, stretch, stretch);
        ComplexBuffer expected(static_cast<quint64>(stretch));
        for (qint64 k = 0; k < stretch; ++k) {
            const auto index = static_cast<quint64>(k);
            const int from = static_cast<int>((place.sample + sample + k) % played.i.size());
            expected[index] = {played.i.at(from), played.q.at(from)};
            recorded[index] = place.isInverted ? std::conj(recorded[index]) : recorded[index];
        }
        const Shift shift =
            CrossSpectrum(weightedTransform(std::move(expected)),
                          weightedTransform(std::move(recorded)), linesWithin(band, 1.0, stretch))
                .shift(mostShift);
        const bool isFound =
            shift.coherence > leastCoherence && std::abs(shift.samples) <= mostShift + 1.0;
        return isFound ? std::make_optional(shift.samples) : std::nullopt;
    }

private:
    const SignalPeriod& played;
    const SampleReader& reader;
    const qint64 first;
    const double turns; // of the carrier from sample to sample
    const SignalPlace place;
};

} // namespace

std::optional<MeasuredPeriod> measurePeriod(const SampleReader& reader, double sampleRate,
                                            qint64 first, double nominal, FrequencyBand band)
{
    constexpr double longest = 1 << 30;
    if (!(nominal >= 1.0 && nominal < longest)) {
        return std::nullopt;
    }
    const int mostShift = static_cast<int>(std::ceil(mostError * nominal)) + 2;
    qint64 stretch = stretchFor(mostShift);
    const double room =
        static_cast<double>(reader.recording().samples - first) - nominal - mostShift - 1.0;
    while (static_cast<double>(stretch) > room && holdsShift(stretch / 2, mostShift)) {
        stretch /= 2;
    }
    const LineRange lines = linesWithin(band, sampleRate, stretch);
    if (static_cast<double>(stretch) > room || stretch < shortestStretch || !areEnough(lines)) {
        return std::nullopt;
    }
    return PeriodSearch(reader, first, stretch, mostShift, lines).find(nominal);
}

std::optional<double> clockErrorAgainst(const SignalPeriod& played, const SampleReader& reader,
                                        double sampleRate, qint64 first, double center,
                                        FrequencyBand band)
{
    const qint64 samples =
        std::min(reader.recording().samples - first, 2 * qint64{played.i.size()});
    const int mostShift = static_cast<int>(std::ceil(mostError * static_cast<double>(samples))) + 2;
    qint64 stretch = stretchFor(mostShift);
    while (stretch > samples / 2 && holdsShift(stretch / 2, mostShift)) {
        stretch /= 2;
    }
    const FrequencyBand turns{band.low / sampleRate, band.high / sampleRate};
    if (stretch > samples / 2 || stretch < shortestStretch ||
        !areEnough(linesWithin(turns, 1.0, stretch))) {
        return std::nullopt;
    }
    const auto place = placeOfSignal(reader, sampleRate, first, center, played);
    if (!place) {
        return std::nullopt;
    }
    const Drift drift(played, reader, first, center / sampleRate, *place);
    const qint64 apart = samples - stretch;
    const std::optional<double> begin = drift.at(0, stretch, turns, mostShift);
    const std::optional<double> end = drift.at(apart, stretch, turns, mostShift);
    if (!begin || !end) {
        return std::nullopt;
    }
    return (*end - *begin) / static_cast<double>(apart);
}
