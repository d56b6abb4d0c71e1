// The smallest and the largest of some samples.
#pragma once

struct Extremes
{
    double smallest;
    double largest;

    double span() const { return largest - smallest; }
};

// A sample takes the place of an extreme if it lies beyond; so not-a-number never does, and of
// equal samples the first stays. `start` are the extremes of nothing.
Extremes extremesOf(const double* samples, int count, Extremes start);
