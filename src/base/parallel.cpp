#include "base/parallel.h"

#include <QRunnable>
#include <QThreadPool>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using Worker = std::function<void(Pieces&)>;

class Assistant : public QRunnable
{
public:
    Assistant(const Worker& work, Pieces& pieces) : worker(work), left(pieces)
    {
        setAutoDelete(false);
        published.store(true, std::memory_order_release);
    }

    void run() override
    {
        published.load(std::memory_order_acquire);
        try {
            worker(left);
        } catch (...) {
            failure = std::current_exception();
        }
        const std::lock_guard<std::mutex> lock(mutex);
        ended = true;
        changed.notify_one();
    }

    // Returns what went wrong, if anything did.
    std::exception_ptr callOffOrWait()
    {
        if (!QThreadPool::globalInstance()->tryTake(this)) {
            std::unique_lock<std::mutex> lock(mutex);
            changed.wait(lock, [this] { return ended; });
        }
        return failure;
    }

private:
    const Worker& worker;
    Pieces& left;
    std::atomic<bool> published{false};
    std::exception_ptr failure;
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;
};

thread_local bool isAlone = false;

} // namespace

WorkAlone::WorkAlone()
{
    isAlone = true;
}

WorkAlone::~WorkAlone()
{
    isAlone = false;
}

int usefulThreads()
{
    constexpr unsigned most = 8;
    if (isAlone) {
        return 1;
    }
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, most));
}

void inParallel(quint64 pieces, int threads, const Worker& worker)
{
    Pieces left(pieces);
    std::vector<std::unique_ptr<Assistant>> assistants;
    for (quint64 i = 1; i < std::min(static_cast<quint64>(threads), pieces); ++i) {
        assistants.push_back(std::make_unique<Assistant>(worker, left));
    }
    for (const std::unique_ptr<Assistant>& assistant : assistants) {
        QThreadPool::globalInstance()->start(assistant.get());
    }
    std::exception_ptr failure;
    try {
        worker(left);
    } catch (...) {
        failure = std::current_exception();
    }
    for (const std::unique_ptr<Assistant>& assistant : assistants) {
        const std::exception_ptr other = assistant->callOffOrWait();
        failure = failure ? failure : other;
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}
