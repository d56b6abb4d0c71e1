#include "remote/socket_interface.h"

#include "remote/device_text.h"
#include "remote/ko_remote_exception.h"
#include "remote/tcp_connection.h"

#include <QTcpSocket>

namespace {

constexpr int connectMs = 3000;
constexpr int writtenMs = 1000;
constexpr int firstDataMs = 3000;
constexpr int hangUpMs = 1000;

} // namespace

SocketInterface::SocketInterface(const QString& ipAddress, quint16 portToReach)
    : LANInterface(ipAddress), port(portToReach)
{
}

SocketInterface::~SocketInterface() = default;

void SocketInterface::open()
{
    socket = std::make_unique<QTcpSocket>();
    // The socket is used by several threads in turn, with blocking calls only. Belonging to
    // no thread, it leaves no notifier behind in the event loop of the one that opened it. Qt
    // then queues its own signal of an error, to nobody, and wants the type known for that.
    qRegisterMetaType<QAbstractSocket::SocketError>();
    socket->moveToThread(nullptr);
    if (!connectSocket(*socket, address, port, connectMs, patience)) {
        throwRemoteException(QLatin1String("Unable to connect to Host: ") + address.toString());
    }
}

void SocketInterface::close()
{
    if (socket) {
        hangUp(*socket, hangUpMs, patience);
        socket->close();
    }
}

void SocketInterface::sendSCPI(const QString& command)
{
    if (!socket) {
        throwRemoteException(QLatin1String("Error at sendSCPI: ") + command);
    }
    if (socket->isOpen()) { // an instrument that has gone is met with silence
        DeviceText::sendLine(*socket, command);
    }
    if (socket->isOpen()) { // it may be found gone with the write
        socket->flush();
    }
}

bool SocketInterface::connected() const
{
    return socket && socket->state() == QAbstractSocket::ConnectedState;
}

QString SocketInterface::querySCPI(const QString& command)
{
    // Deliberate: an answer that came too late and lies ready is the answer of this query, and
    // alone. Nothing tells it from the right one.
    if (connected()) {
        socket->waitForReadyRead(0);
    }
    const QByteArray late = arrived();
    sendSCPI(command);
    patience.await(
        writtenMs, [this](int ms) { return socket->waitForBytesWritten(ms); },
        [this] { return connected() && socket->bytesToWrite() > 0; });
    if (!late.isEmpty()) {
        return DeviceText::answerFrom(late);
    }
    // A quick answer may have come in with the wait above; a wait for more would be lost.
    patience.await(
        firstDataMs, [this](int ms) { return socket->waitForReadyRead(ms); },
        [this] { return connected() && socket->bytesAvailable() == 0; });
    return DeviceText::answerFrom(arrived());
}

QByteArray SocketInterface::arrived() const
{
    return socket && socket->isOpen() ? socket->readAll() : QByteArray();
}

bool SocketInterface::hasHungUp()
{
    if (connected()) {
        socket->waitForReadyRead(0); // an answer that comes in stays for the next query
    }
    return !connected();
}

void SocketInterface::goToLocal()
{
    sendSCPI(QStringLiteral("&GTL"));
}
