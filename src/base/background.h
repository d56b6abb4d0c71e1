// The one shape of work in the background: a function of values in, a value out. It runs on a
// worker thread and touches nothing that others may change; what it returns is handed over in the
// main thread, if the one who asked is still there.
//
//     inBackground(this, [copy = settings] { return calculate(copy); },
//                  [this](const Result& result) { show(result); });
//
// An end is always seen: where the system refuses a thread, or an exception ends the work (no
// memory, for example), the receiver gets a default-made result.
#pragma once

#include "base/worker_threads.h"

#include <QObject>

#include <functional>
#include <memory>
#include <type_traits>

class QEvent;

// A call in the main thread, made ahead: sending it takes no memory, so an end can be told when
// there is none left. Made in the main thread. Calls come in order of sending, when the event loop
// gets round to them; one whose asker or application has gone is dropped.
class CallHome
{
public:
    CallHome(QObject* asker, std::function<void()> call);
    ~CallHome();
    CallHome(const CallHome&) = delete;
    CallHome& operator=(const CallHome&) = delete;

    // Once, from any thread that the end of the application waits for.
    void send();

private:
    QObject* home; // null without an application
    std::unique_ptr<QEvent> event;
};

// Main thread. Throws std::bad_alloc when there isn't even the memory to ask; then nothing comes.
template <class Work, class Receive> void inBackground(QObject* asker, Work work, Receive receive)
{
    using Result = std::invoke_result_t<Work&>;
    const auto result = std::make_shared<Result>();
    const auto end =
        std::make_shared<CallHome>(asker, [result, receive]() mutable { receive(*result); });
    const bool started = WorkerThreads::ofProcess().start([work, result, end]() mutable {
        try {
            *result = work();
        } catch (...) { // NOLINT(bugprone-empty-catch): the default-made result tells it
        }
        end->send();
    });
    if (!started) {
        end->send();
    }
}
