#include "simulator/pseudo_terminal.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int readSize = 4096;
constexpr int mostReceived = 65536; // then the line waits until they are taken

// No echo, no translation of line ends, no signals.
bool makeTransparent(int terminal)
{
    termios settings{};
    if (tcgetattr(terminal, &settings) != 0) {
        return false;
    }
    cfmakeraw(&settings);
    return tcsetattr(terminal, TCSANOW, &settings) == 0;
}

} // namespace

PseudoTerminal::~PseudoTerminal()
{
    for (const int end : {ours, theirs}) {
        if (end >= 0) {
            ::close(end);
        }
    }
}

bool PseudoTerminal::start()
{
    ours = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (ours < 0 || grantpt(ours) != 0 || unlockpt(ours) != 0) {
        setErrorString(QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    otherEnd = QString::fromLocal8Bit(ptsname(ours));
    theirs = ::open(ptsname(ours), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (theirs < 0 || !makeTransparent(theirs)) {
        setErrorString(QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    readable = std::make_unique<QSocketNotifier>(ours, QSocketNotifier::Read);
    writable = std::make_unique<QSocketNotifier>(ours, QSocketNotifier::Write);
    writable->setEnabled(false);
    connect(readable.get(), &QSocketNotifier::activated, this, [this] { receive(); });
    connect(writable.get(), &QSocketNotifier::activated, this, [this] { send(); });
    return open(QIODevice::ReadWrite | QIODevice::Unbuffered);
}

void PseudoTerminal::discardUnsent()
{
    unsent.clear();
    writable->setEnabled(false);
}

qint64 PseudoTerminal::bytesAvailable() const
{
    return received.size() + QIODevice::bytesAvailable();
}

qint64 PseudoTerminal::readData(char* data, qint64 most)
{
    const int size = static_cast<int>(std::min<qint64>(most, received.size()));
    std::copy_n(received.constData(), size, data);
    received.remove(0, size);
    readable->setEnabled(true);
    return size;
}

qint64 PseudoTerminal::writeData(const char* data, qint64 size)
{
    unsent.append(data, static_cast<int>(size));
    send();
    return size;
}

void PseudoTerminal::receive()
{
    char bytes[readSize];
    const ssize_t size = ::read(ours, bytes, sizeof bytes);
    if (size <= 0) {
        return;
    }
    received.append(bytes, static_cast<int>(size));
    readable->setEnabled(received.size() < mostReceived);
    emit readyRead();
}

void PseudoTerminal::send()
{
    while (!unsent.isEmpty()) {
        const ssize_t size = ::write(ours, unsent.constData(), static_cast<size_t>(unsent.size()));
        if (size <= 0) {
            break; // the other end's buffer is full; the notifier tells when it isn't
        }
        unsent.remove(0, static_cast<int>(size));
    }
    writable->setEnabled(!unsent.isEmpty());
}
