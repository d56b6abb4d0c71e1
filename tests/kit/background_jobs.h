// The work that the program has in the background.
#pragma once

#include "base/worker_threads.h"
#include "kit/event_wait.h"

#include <QCoreApplication>
#include <QtTest>

// Returns when all has ended and what it brought has arrived.
inline void waitForBackgroundJobs()
{
    WorkerThreads::ofProcess().waitForDone();
    QCoreApplication::processEvents();
}

// The same without holding the main thread up.
inline bool backgroundJobsEnd(int limitMs)
{
    const bool ended =
        eventsBring([] { return WorkerThreads::ofProcess().busyCount() == 0; }, limitMs);
    QCoreApplication::processEvents();
    return ended;
}
