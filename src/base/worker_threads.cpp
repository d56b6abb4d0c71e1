#include "base/worker_threads.h"

#include <QCoreApplication>

#include <atomic>
#include <chrono>
#include <exception>
#include <iterator>
#include <utility>

namespace {

constexpr std::chrono::seconds keptIdle(30);

void runQuietly(const std::function<void()>& work)
{
    try {
        work();
    } catch (...) { // NOLINT(bugprone-empty-catch): who wants to know catches it in the work
    }
}

} // namespace

WorkerThreads& WorkerThreads::ofProcess()
{
    static WorkerThreads threads;
    static std::atomic<bool> awaited{false}; // by the application that exists
    if (QCoreApplication::instance() != nullptr && !awaited.exchange(true)) {
        qAddPostRoutine([] {
            awaited = false;
            threads.waitForDone();
        });
    }
    return threads;
}

WorkerThreads::~WorkerThreads()
{
    waitForDone();
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ending = true;
    }
    handedOver.notify_all();
    std::unique_lock<std::mutex> lock(mutex);
    allDone.wait(lock, [this] { return threads.empty(); });
    forgetEnded();
}

bool WorkerThreads::start(const std::function<void()>& work)
{
    const std::lock_guard<std::mutex> lock(mutex);
    try {
        forgetEnded();
        if (idle > static_cast<int>(handed.size())) {
            handed.push_back(work);
            handedOver.notify_one();
        } else {
            startThread(work);
        }
        ++busy;
        return true;
    } catch (const std::exception&) { // no thread (std::system_error) or no memory
        return false;
    }
}

// With the mutex held, so that the thread finds its place filled when it comes to leave it.
void WorkerThreads::startThread(const std::function<void()>& work)
{
    threads.emplace_back();
    try {
        threads.back() = std::thread(&WorkerThreads::serve, this, std::prev(threads.end()), work);
    } catch (...) {
        threads.pop_back();
        throw;
    }
}

void WorkerThreads::serve(Threads::iterator self, std::function<void()> work)
{
    do {
        runQuietly(work);
        work = nullptr; // what it holds is free before it counts as done
    } while (takeNext(work));
    const std::lock_guard<std::mutex> lock(mutex);
    ended.splice(ended.end(), threads, self);
    allDone.notify_all();
}

bool WorkerThreads::takeNext(std::function<void()>& work)
{
    std::unique_lock<std::mutex> lock(mutex);
    --busy;
    ++idle;
    allDone.notify_all();
    const bool found = handedOver.wait_for(lock, keptIdle, [this] {
        return !handed.empty() || ending;
    }) && !handed.empty();
    --idle;
    if (found) {
        work = std::move(handed.front());
        handed.pop_front();
    }
    return found;
}

void WorkerThreads::forgetEnded()
{
    for (std::thread& thread : ended) {
        thread.join();
    }
    ended.clear();
}

int WorkerThreads::busyCount() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return busy;
}

void WorkerThreads::waitForDone()
{
    std::unique_lock<std::mutex> lock(mutex);
    allDone.wait(lock, [this] { return busy == 0; });
}
