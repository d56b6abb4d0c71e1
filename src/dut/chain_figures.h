// The figures of a chain that have a name, as command lines give them: one table for all programs.
#pragma once

#include "dut/chain.h"

#include <vector>

struct ChainFigure
{
    const char* name;
    const char* unit; // in capitals, as help texts show it
    const char* description;
    double lowest;
    double highest;
    bool whole; // whole numbers only
    void (*store)(Chain& chain, double value);

    // Neither not-a-number nor outside the bounds.
    bool allows(double value) const;
};

// Device's figures first, then those of the chain, in the order in which help texts tell them. The
// two that set a converter's full scale exclude each other; who reads a command line refuses both.
const std::vector<ChainFigure>& chainFigures();

// "PEAK_TO_PEAK<separator>PERIOD" in dB and Hz, both above 0; none for other text.
std::optional<Ripple> rippleOf(const QString& text, char separator);
