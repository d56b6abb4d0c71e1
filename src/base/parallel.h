// Independent pieces of one job on several cores at once. The caller works too and returns when
// all is done. Help comes from the process's worker threads: an assistant that hasn't begun when
// the pieces run out is called off, so a busy machine makes nobody wait, and where the system
// refuses a thread the caller does the work alone. Any number of threads may ask at once; but one
// that may outlive the application works alone, for then the workers are taken down.
#pragma once

#include <QtGlobal>

#include <algorithm>
#include <atomic>
#include <functional>

// Numbers 0 to count - 1, each handed out once.
class Pieces
{
public:
    explicit Pieces(quint64 pieceCount) : count(pieceCount) {}

    // False when none is left.
    bool take(quint64& piece)
    {
        piece = next.fetch_add(1, std::memory_order_relaxed);
        return piece < count;
    }

private:
    std::atomic<quint64> next{0};
    quint64 count;
};

// As long as one exists, the thread that made it is worth no more than itself. They may be nested.
class WorkAlone
{
public:
    WorkAlone();
    ~WorkAlone();
    WorkAlone(const WorkAlone&) = delete;
    WorkAlone& operator=(const WorkAlone&) = delete;

private:
    const bool wasAlone;
};

// The cores of this machine, at least 1, and no more than the memory can feed. 1 for a thread that
// works alone.
int usefulThreads();

// Runs the worker on up to the given number of threads; each takes pieces until none is left. An
// exception of a worker reaches the caller, after all have ended.
void inParallel(quint64 pieces, int threads, const std::function<void(Pieces&)>& worker);

// The same for numbers 0 to count - 1 in runs of neighbours, one run a piece.
constexpr quint64 runLength = 32768;

constexpr quint64 runsOf(quint64 count)
{
    return (count + runLength - 1) / runLength;
}

// Calls work(first, last) for each run that is left, from first to last - 1.
template <typename Work> void forEachRun(Pieces& runs, quint64 count, Work work)
{
    for (quint64 run = 0; runs.take(run);) {
        work(run * runLength, std::min((run + 1) * runLength, count));
    }
}

// All runs on as many cores as there are. Few numbers are worked off by the caller alone.
template <typename Work> void inRuns(quint64 count, Work work)
{
    inParallel(runsOf(count), usefulThreads(),
               [&](Pieces& runs) { forEachRun(runs, count, work); });
}
