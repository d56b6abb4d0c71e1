// The one pi of the program: the double nearest to it. Samples are fixed to the bit, so whoever
// computes them takes this one.
#pragma once

constexpr double pi = 3.141592653589793;
