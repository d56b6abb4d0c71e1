// Tells whether a window kept answering.
#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <ctime>

// Beats every millisecond and keeps how long the event loop was away in between. Other programs
// may delay a beat, but only the window itself makes its own thread calculate for long.
class Heartbeat
{
public:
    // A beat that took longer than that many milliseconds is late.
    explicit Heartbeat(qint64 answerTime) : latest(answerTime)
    {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] { beat(); });
        sinceLast.start();
        timer.start(1);
    }

    int beats = 0;
    int lateBeats = 0;
    qint64 longest = 0;    // ms
    qint64 longestOwn = 0; // ms of calculation

private:
    void beat()
    {
        const qint64 away = sinceLast.restart();
        const qint64 now = ownTime();
        ++beats;
        lateBeats += away > latest ? 1 : 0;
        longest = std::max(longest, away);
        longestOwn = std::max(longestOwn, now - ownAtLast);
        ownAtLast = now;
    }

    // What this thread has calculated so far, in ms.
    static qint64 ownTime()
    {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return qint64{time.tv_sec} * 1000 + time.tv_nsec / 1000000;
    }

    qint64 latest;
    QTimer timer;
    QElapsedTimer sinceLast;
    qint64 ownAtLast = ownTime();
};
