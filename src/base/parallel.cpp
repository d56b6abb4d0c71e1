#include "base/parallel.h"

#include "base/worker_threads.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Worker = std::function<void(Pieces&)>;

// One helper of a job. Its thread keeps it alive and may come to it late, when the job is over; it
// then finds it called off and touches nothing of the job's.
class Assistant
{
public:
    Assistant(const Worker& work, Pieces& pieces) : worker(&work), left(&pieces) {}

    void run()
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (state == State::CalledOff) {
                return;
            }
            state = State::Working;
        }
        try {
            (*worker)(*left);
        } catch (...) {
            failure = std::current_exception();
        }
        const std::lock_guard<std::mutex> lock(mutex);
        state = State::Ended;
        changed.notify_one();
    }

    // Returns what went wrong, if anything did.
    std::exception_ptr callOffOrWait()
    {
        std::unique_lock<std::mutex> lock(mutex);
        if (state == State::Waiting) {
            state = State::CalledOff;
        }
        changed.wait(lock, [this] { return state != State::Working; });
        return failure;
    }

private:
    enum class State { Waiting, Working, Ended, CalledOff };

    const Worker* worker;
    Pieces* left;
    std::exception_ptr failure;
    std::mutex mutex;
    std::condition_variable changed;
    State state = State::Waiting;
};

using Assistants = std::vector<std::shared_ptr<Assistant>>;

// As many as there is use for, or fewer where no further thread or memory is to be had.
Assistants callAssistants(quint64 wanted, const Worker& worker, Pieces& left)
{
    Assistants assistants;
    try {
        assistants.reserve(wanted);
        while (assistants.size() < wanted) {
            auto assistant = std::make_shared<Assistant>(worker, left);
            if (!WorkerThreads::ofProcess().start([assistant] { assistant->run(); })) {
                break;
            }
            assistants.push_back(std::move(assistant));
        }
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): then the caller works alone
    }
    return assistants;
}

thread_local bool isAlone = false;

} // namespace

WorkAlone::WorkAlone() : wasAlone(isAlone)
{
    isAlone = true;
}

WorkAlone::~WorkAlone()
{
    isAlone = wasAlone;
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
    const quint64 wanted = std::min(static_cast<quint64>(threads), pieces);
    const Assistants assistants = callAssistants(wanted > 0 ? wanted - 1 : 0, worker, left);
    std::exception_ptr failure;
    try {
        worker(left);
    } catch (...) {
        failure = std::current_exception();
    }
    for (const std::shared_ptr<Assistant>& assistant : assistants) {
        const std::exception_ptr other = assistant->callOffOrWait();
        failure = failure ? failure : other;
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}
