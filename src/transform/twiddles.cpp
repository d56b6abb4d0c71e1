#include "transform/twiddles.h"

#include "transform/pi.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Element = ComplexBuffer::Element;

constexpr std::size_t sideBySide = 4;

// Moves some places on by count steps. A step waits for the one before it, so there is time for
// several walks at once.
void walk(Stretch* places, std::size_t used, quint64 count)
{
    std::array<Stretch, sideBySide> now{};
    std::copy_n(places, used, now.begin());
    for (quint64 l = 0; l < count; ++l) {
        for (Stretch& place : now) {
            place.w = plainProduct(place.w, place.rotation);
        }
    }
    std::copy_n(now.begin(), used, places);
}

// The same, with the values on the way written, each walk's into its own row of count. Where
// fewer are used, the last one is walked several times over.
void fillSome(Stretch* places, std::size_t used, Split out, quint64 count)
{
    std::array<Stretch, sideBySide> now{};
    std::array<Split, sideBySide> rows{};
    for (std::size_t i = 0; i < sideBySide; ++i) {
        const std::size_t place = std::min(i, used - 1);
        now[i] = places[place];
        rows[i] = out.at(place * count);
    }
    for (quint64 l = 0; l < count; ++l) {
        for (std::size_t i = 0; i < sideBySide; ++i) {
            rows[i].re[l] = now[i].w.real();
            rows[i].im[l] = now[i].w.imag();
            now[i].w = plainProduct(now[i].w, now[i].rotation);
        }
    }
    std::copy_n(now.begin(), used, places);
}

} // namespace

std::vector<Element> stageRotations(quint64 count)
{
    const double theta = pi / static_cast<double>(count);
    double c = std::cos(theta);
    double s = std::sin(theta);
    std::vector<Element> rotations;
    for (quint64 n = count; n > 1; n /= 2) {
        const double doubledSine = 2 * c * s;
        c = c * c - s * s;
        s = doubledSine;
        rotations.emplace_back(c, s);
    }
    return rotations;
}

void fillTwiddles(std::vector<Stretch>& places, Split out, quint64 count)
{
    for (std::size_t at = 0; at < places.size(); at += sideBySide) {
        const std::size_t used = std::min(sideBySide, places.size() - at);
        fillSome(places.data() + at, used, out.at(at * count), count);
    }
}

std::vector<std::vector<Stretch>> findStretches(const Element* rotations, quint64 stages,
                                                quint64 columns, quint64 parts)
{
    const quint64 pairs = (quint64{1} << stages) / 2;
    std::vector<std::vector<Stretch>> places(parts, std::vector<Stretch>(2 * pairs - 1));
    std::vector<Stretch> walks;
    walks.reserve(stages);
    for (quint64 stage = 0; stage < stages; ++stage) {
        walks.push_back({Element(1.0, 0.0), rotations[stage]});
    }
    for (quint64 stop = 0; stop < pairs * parts; ++stop) {
        quint64 first = 0;
        for (std::size_t stage = 0; stage < walks.size(); ++stage) {
            places[stop % parts][first + stop / parts] = walks[stage];
            first += pairs >> stage;
        }
        while (!walks.empty() && stop + 1 >= (pairs >> (walks.size() - 1)) * parts) {
            walks.pop_back();
        }
        for (std::size_t at = 0; at < walks.size(); at += sideBySide) {
            walk(walks.data() + at, std::min(sideBySide, walks.size() - at), columns / parts);
        }
    }
    return places;
}
