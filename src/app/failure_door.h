// The way of a failure from a worker thread to the window, which may go at any moment.
#pragma once

#include <functional>
#include <mutex>
#include <utility>

class KORemoteException;

// Shared by the window and its jobs. A job that outlives the window finds the door closed.
class FailureDoor
{
public:
    using Receiver = std::function<void(KORemoteException*)>;

    // The receiver is called on the thread of the one who tells, and only emits a signal.
    explicit FailureDoor(Receiver failed) : receiver(std::move(failed)) {}

    void tell(KORemoteException* failure)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (receiver) {
            receiver(failure);
        }
    }

    void close()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        receiver = nullptr;
    }

private:
    std::mutex mutex;
    Receiver receiver;
};
