#include "base/dropping_output.h"

#include <QMutexLocker>
#include <QString>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A description of its own, so that not to wait is asked for its writes alone. A file would get a
// second position, and never waits.
int openedAgain(int descriptor)
{
    struct stat status = {};
    if (fstat(descriptor, &status) != 0 || !(S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode))) {
        return -1;
    }
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(descriptor);
    return open(path.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

bool takesAPiece(int descriptor)
{
    pollfd wanted = {descriptor, POLLOUT, 0};
    return poll(&wanted, 1, 0) == 1 && (wanted.revents & POLLOUT) != 0;
}

void writeMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // Never freed: other threads may have something to say while the process ends.
    static auto* const standardError = new DroppingOutput(STDERR_FILENO);
    standardError->write(qFormatLogMessage(type, context, text).toLocal8Bit() + '\n');
}

} // namespace

DroppingOutput::DroppingOutput(int outputDescriptor)
    : descriptor(outputDescriptor), unblocked(openedAgain(outputDescriptor))
{
}

DroppingOutput::~DroppingOutput()
{
    if (unblocked >= 0) {
        close(unblocked);
    }
}

void DroppingOutput::write(const QByteArray& line)
{
    const QMutexLocker locker(&mutex);
    const QByteArray bytes = cutOff ? '\n' + line : line;
    int taken = 0;
    qint64 last = 1;
    while (taken < bytes.size() && last > 0) {
        last = writeSome(bytes.constData() + taken, bytes.size() - taken);
        taken += static_cast<int>(std::max<qint64>(last, 0));
    }
    if (taken > 0) {
        cutOff = taken < bytes.size();
    }
}

// As many bytes as are taken at once; 0 or less for none.
qint64 DroppingOutput::writeSome(const char* bytes, int size) const
{
    const auto count = static_cast<std::size_t>(size);
    if (unblocked >= 0) {
        return ::write(unblocked, bytes, count);
    }
    const ssize_t sent = send(descriptor, bytes, count, MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent >= 0 || errno != ENOTSOCK) {
        return sent;
    }
    // A pipe with room takes a piece of this size whole.
    return takesAPiece(descriptor)
               ? ::write(descriptor, bytes, std::min<std::size_t>(count, PIPE_BUF))
               : -1;
}

void dropMessagesThatWait()
{
    qInstallMessageHandler(writeMessage);
}
