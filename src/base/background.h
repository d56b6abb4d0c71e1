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
#include <QPointer>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

// Calls back in the main thread when its event loop gets round to it, in order of asking; not at
// all without an application. Any thread.
void inMainThread(std::function<void()> call);

// The same, if the asker is still there then. The pointer is made in the main thread.
template <class Call> void inMainThreadFor(const QPointer<QObject>& asker, Call call)
{
    inMainThread([asker, call]() mutable {
        if (asker) {
            call();
        }
    });
}

// Main thread.
template <class Work, class Receive> void inBackground(QObject* asker, Work work, Receive receive)
{
    using Result = std::invoke_result_t<Work&>;
    const auto deliver = [home = QPointer<QObject>(asker), receive](const Result& result) {
        inMainThreadFor(home, [receive, result]() mutable { receive(result); });
    };
    const bool started = WorkerThreads::ofProcess().start([work, deliver]() mutable {
        Result result{};
        try {
            result = work();
        } catch (...) { // NOLINT(bugprone-empty-catch): the default-made result tells it
        }
        deliver(result);
    });
    if (!started) {
        deliver(Result{});
    }
}
