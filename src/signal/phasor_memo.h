// Cosine and sine of angles that come again and again. The random phase laws draw among 32768
// angles only, so a long spectrum asks for each of them over a hundred times, and looking a pair up
// takes a fifth of the time of computing it. The values are those of std::cos and std::sin for
// exactly the angle that is asked for: an angle that the memo doesn't hold is computed, whatever
// law it comes from.
//
// One memo a thread; it takes 768 KiB, about what the second cache of a core holds.
#pragma once

#include <QtGlobal>

#include <cmath>
#include <cstring>
#include <vector>

struct Phasor
{
    double cosine;
    double sine;
};

class PhasorMemo
{
public:
    PhasorMemo() : entries(entryCount, {neverAsked, {0.0, 0.0}}) {}

    Phasor at(double angle)
    {
        if (!(std::abs(angle) <= widest)) { // not-a-number, too
            return compute(angle);
        }
        Entry& entry = entries[slotOf(angle)];
        const quint64 bits = bitsOf(angle);
        if (entry.angle != bits) {
            entry = {bits, compute(angle)};
        }
        return entry.phasor;
    }

    static Phasor compute(double angle) { return {std::cos(angle), std::sin(angle)}; }

private:
    struct Entry
    {
        quint64 angle; // its bits: a negative zero has another sine than a positive one
        Phasor phasor;
    };

    static constexpr quint32 entryCount = 32768; // a turn in as many steps as a draw has values
    static constexpr double widest = 4.0;        // radians
    static constexpr quint64 neverAsked = ~quint64{0};

    static quint32 slotOf(double angle)
    {
        constexpr double perRadian = entryCount / 6.283185307179586;
        constexpr double above = 2.0 * entryCount + 0.5; // keeps it positive and rounds
        return static_cast<quint32>(angle * perRadian + above) % entryCount;
    }

    static quint64 bitsOf(double angle)
    {
        quint64 bits = 0;
        std::memcpy(&bits, &angle, sizeof(bits));
        return bits;
    }

    std::vector<Entry> entries;
};
