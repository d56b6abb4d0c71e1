// The threads of the work in the background: made when they are needed, kept a while when they have
// nothing to do, gone in a program that stands idle. Any thread may ask for one.
//
// A thread that the system refuses is told to the one who asked, at once. That is why the work
// doesn't go to the pool of Qt: there a refused thread takes its work along without a word, is
// counted as busy for ever, and the end of the program waits for it.
#pragma once

#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

class WorkerThreads
{
public:
    // Those of the process; they share its cores. The end of the application waits for what they
    // have begun.
    static WorkerThreads& ofProcess();

    WorkerThreads() = default;
    ~WorkerThreads(); // waits for their work
    WorkerThreads(const WorkerThreads&) = delete;
    WorkerThreads& operator=(const WorkerThreads&) = delete;

    // Begins the work, on an idle thread or on a new one, however many are busy. False, and no
    // trace of the work stays, when there is no thread or no memory for it. An exception of the
    // work is dropped.
    bool start(const std::function<void()>& work);

    int busyCount() const;
    void waitForDone();

private:
    using Threads = std::list<std::thread>;

    void startThread(const std::function<void()>& work);
    void serve(Threads::iterator self, std::function<void()> work);
    bool takeNext(std::function<void()>& work);
    void forgetEnded();

    mutable std::mutex mutex;
    std::condition_variable handedOver;
    std::condition_variable allDone;
    std::list<std::function<void()>> handed; // each has an idle thread that will take it
    Threads threads;
    Threads ended; // left their work for good; to be joined
    int idle = 0;
    int busy = 0; // work that was handed over counts
    bool ending = false;
};
