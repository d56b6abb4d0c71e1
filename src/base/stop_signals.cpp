#include "base/stop_signals.h"

#include <atomic>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A signal handler is given nothing but the signal's number, so what it needs is global.
std::atomic<int> handlerEnd{-1};
std::atomic<int> firstSignal{0};
std::atomic<bool> secondEnds{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "a handler may not wait for a lock");

// Only what may be called at any moment: ending, and writing one byte without waiting.
void takeSignal(int signal)
{
    constexpr int statusOfSignals = 128; // what a shell adds to the number
    const int savedError = errno;
    int none = 0;
    const bool isFirst = firstSignal.compare_exchange_strong(none, signal);
    // A terminal that closes tells it several times: by its shell and by the system.
    if (!isFirst && secondEnds && signal != SIGHUP) {
        _exit(statusOfSignals + signal);
    }
    const char byte = 0;
    const ssize_t written = write(handlerEnd, &byte, sizeof(byte));
    static_cast<void>(written); // a full socket means that the loop is being woken already
    errno = savedError;
}

bool isIgnored(int signal)
{
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void handle(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    if (!isIgnored(SIGHUP)) { // as nohup wants it
        sigaction(SIGHUP, &action, nullptr);
    }
}

} // namespace

StopSignals::StopSignals(Second second, QObject* parent) : QObject(parent)
{
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    for (const int end : ends) {
        fcntl(end, F_SETFL, O_NONBLOCK);
        fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    notifier = std::make_unique<QSocketNotifier>(ends[1], QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &StopSignals::takeByte);
    handlerEnd = ends[0];
    firstSignal = 0;
    secondEnds = second == Second::EndsTheProcess;
    handle(takeSignal);
}

StopSignals::~StopSignals()
{
    handle(SIG_DFL);
    handlerEnd = -1;
    notifier.reset();
    close(ends[0]);
    close(ends[1]);
}

int StopSignals::received()
{
    return firstSignal;
}

void StopSignals::takeByte()
{
    char byte = 0;
    if (read(ends[1], &byte, sizeof(byte)) > 0) {
        emit requested();
    }
}
