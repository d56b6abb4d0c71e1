// The window of the averaged periodograms. Its transform is known in closed form (J. F. Kaiser):
// with beta and a distance of m bins
//     W(m) = sinh(sqrt(beta^2 - (pi m)^2)) / sqrt(beta^2 - (pi m)^2),
// beyond the main lobe sin(x)/x of the same root with its sign turned. The largest side lobe of
// sin(x)/x is 0.2172, so side lobes lie at or below 0.2172 beta / sinh(beta) of the top: -122 dB
// for beta 16.
#pragma once

#include <vector>

constexpr double kaiserBeta = 16.0;

// Half the width of the main lobe in bins, sqrt(1 + (beta / pi)^2) rounded up.
constexpr double mainLobe = 5.2;

// Periodic: value k of length is that at the place 2 k / length - 1.
std::vector<double> kaiserWindow(int length);

// How many independent values a mean of so many neighbouring bins over so many segments is worth,
// for white noise; segments follow each other by length / hopDivisor.
double independentCells(double bins, double segments, int hopDivisor);
