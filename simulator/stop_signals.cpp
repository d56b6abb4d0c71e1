#include "simulator/stop_signals.h"

#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A signal handler is given nothing but the signal's number, so the way out of it is global.
volatile sig_atomic_t handlerEnd = -1;

// Only what may be called at any moment: writing one byte, without waiting.
void wakeEventLoop(int /*signal*/)
{
    const int savedError = errno;
    const char byte = 0;
    const ssize_t written = write(handlerEnd, &byte, sizeof(byte));
    static_cast<void>(written); // a full socket means that the loop is being woken already
    errno = savedError;
}

void handle(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

} // namespace

StopSignals::StopSignals(QObject* parent) : QObject(parent)
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
    handle(wakeEventLoop);
}

StopSignals::~StopSignals()
{
    handle(SIG_DFL);
    handlerEnd = -1;
    notifier.reset();
    close(ends[0]);
    close(ends[1]);
}

void StopSignals::takeByte()
{
    char byte = 0;
    if (read(ends[1], &byte, sizeof(byte)) > 0) {
        emit requested();
    }
}
