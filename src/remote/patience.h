// Waiting for a device, in short slices that together last as long as the time limit says. Another
// thread may end all of it at any moment.
#pragma once

#include <QDeadlineTimer>

#include <algorithm>
#include <atomic>

class Patience
{
public:
    // Calls wait(slice in ms) until it returns true, the limit has passed, goesOn() returns false
    // (the device has gone: no wait would last) or patience has ended. What wait() returned last.
    template <class Wait, class GoesOn> bool await(int limitMs, Wait wait, GoesOn goesOn) const
    {
        const QDeadlineTimer limit(limitMs);
        while (goesOn() && !ended) {
            if (wait(static_cast<int>(std::min<qint64>(limit.remainingTime(), sliceMs)))) {
                return true;
            }
            if (limit.hasExpired()) {
                return false;
            }
        }
        return false;
    }

    void end() { ended = true; }
    bool hasEnded() const { return ended; }

private:
    static constexpr qint64 sliceMs = 100;

    std::atomic<bool> ended{false};
};
