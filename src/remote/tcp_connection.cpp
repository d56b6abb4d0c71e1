#include "remote/tcp_connection.h"

#include <QHostAddress>
#include <QTcpSocket>

#ifdef Q_OS_UNIX

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

// An address as the system takes it; length 0 for one that can't be reached by TCP.
struct SystemAddress
{
    sockaddr_storage storage{};
    socklen_t length = 0;
};

template <class Address> SystemAddress stored(const Address& address)
{
    SystemAddress result;
    std::memcpy(&result.storage, &address, sizeof(address));
    result.length = sizeof(address);
    return result;
}

SystemAddress systemAddress(const QHostAddress& address, quint16 port)
{
    if (address.protocol() == QAbstractSocket::IPv4Protocol) {
        sockaddr_in v4{};
        v4.sin_family = AF_INET;
        v4.sin_port = htons(port);
        v4.sin_addr.s_addr = htonl(address.toIPv4Address());
        return stored(v4);
    }
    if (address.protocol() == QAbstractSocket::IPv6Protocol) {
        sockaddr_in6 v6{};
        v6.sin6_family = AF_INET6;
        v6.sin6_port = htons(port);
        const Q_IPV6ADDR bytes = address.toIPv6Address();
        std::memcpy(&v6.sin6_addr, &bytes, sizeof(bytes));
        v6.sin6_scope_id = address.scopeId().toUInt();
        return stored(v6);
    }
    return {};
}

bool isConnected(int descriptor)
{
    int error = 0;
    socklen_t size = sizeof(error);
    return getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

bool awaitConnection(int descriptor, const SystemAddress& address, int limitMs,
                     const Patience& patience)
{
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address.storage), address.length) ==
        0) {
        return true;
    }
    const auto answered = [descriptor](int sliceMs) {
        pollfd writable{descriptor, POLLOUT, 0};
        return poll(&writable, 1, sliceMs) > 0;
    };
    return errno == EINPROGRESS && patience.await(limitMs, answered, [] { return true; }) &&
           isConnected(descriptor);
}

} // namespace

bool connectSocket(QTcpSocket& socket, const QHostAddress& address, quint16 port, int limitMs,
                   const Patience& patience)
{
    const SystemAddress to = systemAddress(address, port);
    if (to.length == 0) {
        return false;
    }
    const int descriptor =
        ::socket(to.storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP);
    if (descriptor < 0) {
        return false;
    }
    if (awaitConnection(descriptor, to, limitMs, patience) &&
        socket.setSocketDescriptor(descriptor, QAbstractSocket::ConnectedState,
                                   QIODevice::ReadWrite)) {
        return true;
    }
    close(descriptor);
    return false;
}

void hangUp(QTcpSocket& socket, int limitMs, const Patience& patience)
{
    if (socket.state() != QAbstractSocket::ConnectedState ||
        shutdown(static_cast<int>(socket.socketDescriptor()), SHUT_WR) != 0) {
        return;
    }
    const auto hasHungUp = [&socket](int sliceMs) {
        socket.waitForReadyRead(sliceMs);
        socket.readAll(); // a late answer, which nobody waits for any more
        return false;
    };
    patience.await(limitMs, hasHungUp,
                   [&socket] { return socket.state() == QAbstractSocket::ConnectedState; });
}

#else // without the calls above a wait lasts as long as its limit

bool connectSocket(QTcpSocket& socket, const QHostAddress& address, quint16 port, int limitMs,
                   const Patience&)
{
    socket.connectToHost(address, port, QIODevice::ReadWrite);
    return socket.waitForConnected(limitMs);
}

void hangUp(QTcpSocket&, int, const Patience&) {}

#endif
