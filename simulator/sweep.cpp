#include "simulator/sweep.h"

#include "simulator/signal_client.h"

#include <cmath>

namespace {

// Less than a program waits for an answer.
constexpr int signalPatience = 2000; // ms
constexpr double longestTimer = 2e9; // ms, what a timer can count

} // namespace

Sweep::Sweep(SimulatedInstrument& sweeping, SignalClient* source, bool isFast, QObject* parent)
    : QObject(parent), instrument(sweeping), signalSource(source), fast(isFast)
{
    duration.setSingleShot(true);
    duration.setTimerType(Qt::PreciseTimer);
    patience.setSingleShot(true);
    patience.setInterval(signalPatience);
    connect(&duration, &QTimer::timeout, this, &Sweep::endIfDone);
    connect(&patience, &QTimer::timeout, this, [this] {
        awaitedPoll = 0;
        endIfDone();
    });
    if (signalSource != nullptr) {
        connect(signalSource, &SignalClient::settled, this, [this](quint64 poll) {
            if (awaitedPoll != 0 && poll >= awaitedPoll) {
                awaitedPoll = 0;
                patience.stop();
                endIfDone();
            }
        });
    }
}

void Sweep::start()
{
    instrument.beginSweep();
    const double milliseconds = 1000.0 * usedSweepTime(instrument.bench.settings.analyzer);
    duration.stop();
    if (!fast) {
        duration.start(static_cast<int>(std::ceil(std::min(milliseconds, longestTimer))));
    }
    awaitedPoll = signalSource != nullptr ? signalSource->refresh() : 0;
    if (awaitedPoll != 0) {
        patience.start();
    }
    endIfDone();
}

void Sweep::endIfDone()
{
    if (isRunning() && !duration.isActive() && awaitedPoll == 0) {
        instrument.endSweep();
        emit ended();
    }
}
