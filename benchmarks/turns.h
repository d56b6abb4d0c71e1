// Times of two ways of doing the same, measured in turns, so that other load on the machine meets
// both alike. The fastest turn of each counts.
#pragma once

#include <algorithm>
#include <chrono>

template <typename Work> double secondsOf(Work work)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

class Fastest
{
public:
    double add(double seconds)
    {
        best = std::min(best, seconds);
        return seconds;
    }
    bool isMeasured() const { return best < never; }
    double seconds() const { return best; }

private:
    static constexpr double never = 1e9;
    double best = never;
};
