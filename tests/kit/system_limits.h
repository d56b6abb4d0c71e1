// Shortages of the system that are real and end with the object that made them.
#pragma once

#include "base/worker_threads.h"

#include <QFile>

#include <csignal>
#include <cstdlib>
#include <future>
#include <grp.h>
#include <memory>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

// No limit on threads binds root: gives it up for good. False where that can't be done.
inline bool becomeOrdinaryUser()
{
    constexpr uid_t id = 65534;
    if (geteuid() != 0) {
        return true;
    }
    const bool isOrdinary =
        setgroups(0, nullptr) == 0 && setresgid(id, id, id) == 0 && setresuid(id, id, id) == 0;
    prctl(PR_SET_DUMPABLE, 1); // or else the search for leaks may not look into the process
    return isOrdinary;
}

// What the process has reserved of its address space, in bytes; 0 where the system doesn't tell.
inline rlim_t addressSpaceInUse()
{
    QFile sizes(QStringLiteral("/proc/self/statm"));
    if (!sizes.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const qulonglong pages = sizes.readAll().split(' ').constFirst().toULongLong();
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

class LoweredLimit
{
public:
    using Resource = decltype(RLIMIT_AS);

    LoweredLimit(Resource limitedResource, rlim_t most) : resource(limitedResource)
    {
        getrlimit(resource, &former);
        rlimit limit = former;
        limit.rlim_cur = most;
        setrlimit(resource, &limit);
    }
    ~LoweredLimit() { setrlimit(resource, &former); }
    LoweredLimit(const LoweredLimit&) = delete;
    LoweredLimit& operator=(const LoweredLimit&) = delete;

private:
    Resource resource;
    rlimit former = {};
};

// No further thread. For an ordinary user.
class ThreadLimit : public LoweredLimit
{
public:
    ThreadLimit() : LoweredLimit(RLIMIT_NPROC, 0) {}
};

// No file grows beyond the size; the write that would fails, as on a disk that is full.
class FileSizeLimit : public LoweredLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : LoweredLimit(RLIMIT_FSIZE, bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
    }
};

// So many bytes more than now.
class MemoryLimit : public LoweredLimit
{
public:
    explicit MemoryLimit(rlim_t left) : LoweredLimit(RLIMIT_AS, addressSpaceInUse() + left) {}
};

// Takes all memory down to blocks of the given size, and leaves the given number of bytes in one
// piece. That counts what the allocator has reserved, which no limit meets any more.
class LastMemory
{
public:
    LastMemory(std::size_t left, std::size_t smallest)
    {
        QByteArray kept(static_cast<int>(left), Qt::Uninitialized);
        limit = std::make_unique<MemoryLimit>(0);
        for (std::size_t size = std::size_t{32} << 20; size >= smallest; size /= 2) {
            while (auto* block = static_cast<Block*>(std::malloc(size))) {
                *block = {taken};
                taken = block;
            }
        }
    }
    ~LastMemory()
    {
        while (taken != nullptr) {
            std::free(std::exchange(taken, taken->next));
        }
    }
    LastMemory(const LastMemory&) = delete;
    LastMemory& operator=(const LastMemory&) = delete;

    static constexpr std::size_t smallestOfAll = 16;

private:
    struct Block
    {
        Block* next;
    };

    std::unique_ptr<MemoryLimit> limit;
    Block* taken = nullptr;
};

// Threads begun meanwhile reserve so much for their stacks that a shortage of memory meets them and
// little else.
class LargeStacks
{
public:
    static constexpr std::size_t size = std::size_t{128} << 20; // bytes

    LargeStacks()
    {
        pthread_getattr_default_np(&former);
        pthread_attr_t attributes = former;
        pthread_attr_setstacksize(&attributes, size);
        pthread_setattr_default_np(&attributes);
    }
    ~LargeStacks() { pthread_setattr_default_np(&former); }
    LargeStacks(const LargeStacks&) = delete;
    LargeStacks& operator=(const LargeStacks&) = delete;

private:
    pthread_attr_t former = {};
};

inline bool threadIsRefused()
{
    try {
        std::thread([] {}).join();
        return false;
    } catch (const std::system_error&) {
        return true;
    }
}

// Whether the system keeps to a limit on this process's threads.
inline bool threadLimitBinds()
{
    const ThreadLimit limit;
    return threadIsRefused();
}

// Under a limit that allows no further thread: takes the worker threads that stand idle as well.
class NoIdleWorkers
{
public:
    explicit NoIdleWorkers(WorkerThreads& workers = WorkerThreads::ofProcess())
    {
        while (workers.start([gate = std::shared_future<void>(opened)] { gate.wait(); })) {
        }
    }
    ~NoIdleWorkers() { end.set_value(); }
    NoIdleWorkers(const NoIdleWorkers&) = delete;
    NoIdleWorkers& operator=(const NoIdleWorkers&) = delete;

private:
    std::promise<void> end;
    std::shared_future<void> opened{end.get_future()};
};
