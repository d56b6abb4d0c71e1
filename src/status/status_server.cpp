#include "status/status_server.h"

#include "status/status_replies.h"

#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <array>

namespace {

constexpr int requestSize = 1024;                    // bytes of one read
constexpr int writeSize = 64000;                     // bytes of one write
constexpr qint64 mostUnread = 1048576;               // bytes; the rest waits in the client
constexpr qint64 mostUnsent = qint64{256} * 1048576; // bytes; a client that has not read them waits
constexpr int mostFormerClients = 32; // each holds a descriptor, of which a process has few
constexpr int descriptorsKept = 8;    // for files, instruments and clients to come

// Without a free one the next client could not even be dropped: it would be tried again and again.
bool descriptorsAreLeft()
{
    std::array<QFile, descriptorsKept> probes;
    return std::all_of(probes.begin(), probes.end(), [](QFile& probe) {
        probe.setFileName(QProcess::nullDevice());
        return probe.open(QIODevice::ReadOnly);
    });
}

} // namespace

StatusServer::StatusServer(MeasurementSetup& setupToTell, QObject* parent)
    : QObject(parent), setup(setupToTell)
{
}

StatusServer::~StatusServer()
{
    close();
    for (QTcpSocket* socket : qAsConst(clients)) {
        socket->disconnect(this); // its end is reported while it dies
        delete socket;
    }
}

void StatusServer::listen(quint16 port)
{
    server = new QTcpServer(parent());
    // One client each time the event loop turns: a server takes clients for as long as there are
    // any, and whoever comes and goes quickly would keep everybody else waiting.
    server->setMaxPendingConnections(1);
    connect(
        server, &QTcpServer::newConnection, this,
        [this, signalling = server] { takeClientOf(signalling); }, Qt::QueuedConnection);
    server->listen(QHostAddress::Any, port);
}

void StatusServer::close()
{
    if (server) {
        server->close();
        server->deleteLater();
    }
}

quint16 StatusServer::port() const
{
    return server ? server->serverPort() : quint16{0};
}

void StatusServer::takeClient()
{
    takeClientOf(server);
}

void StatusServer::takeClientOf(QTcpServer* from)
{
    QTcpSocket* socket = from != nullptr ? from->nextPendingConnection() : nullptr;
    if (socket == nullptr) {
        return;
    }
    if (!descriptorsAreLeft()) {
        delete socket;
        return;
    }
    dropSurplusClients();
    watch(socket);
    client = socket;
    requestWaits = false;
    // A socket stays open when its other end goes; this one went while it waited to be taken.
    if (socket->state() != QAbstractSocket::ConnectedState) {
        clientLeft(socket);
        return;
    }
    send(greeting(setup));
    // A client that went while it was greeted has already been reported as gone.
    if (socket->state() == QAbstractSocket::ConnectedState) {
        emit clientChanged(true);
        if (socket->bytesAvailable() > 0) { // reported before anybody listened
            answerRequest();
        }
    }
}

void StatusServer::watch(QTcpSocket* socket)
{
    clients.append(socket);
    socket->setParent(parent()); // outlives a change of the port
    socket->setReadBufferSize(mostUnread);
    connect(socket, &QTcpSocket::readyRead, this, &StatusServer::answerRequest);
    connect(socket, &QTcpSocket::bytesWritten, this, &StatusServer::answerWhatWaits);
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] { clientLeft(socket); });
}

void StatusServer::answerRequest()
{
    if (!client || !client->isOpen()) { // gone, or about to be
        return;
    }
    // A client that asks and never reads would make the program hold ever more for it.
    requestWaits = client->bytesToWrite() > mostUnsent;
    if (requestWaits) {
        return;
    }
    char buffer[requestSize];
    const qint64 count = client->read(buffer, sizeof(buffer));
    const QString request =
        QString::fromLocal8Bit(buffer, static_cast<int>(std::max<qint64>(count, 0)));
    log.note(request);
    send(replyTo(request, setup));
}

// Only the read that was put off: what lies beyond the bytes of an earlier read waits for more.
void StatusServer::answerWhatWaits()
{
    if (requestWaits) {
        answerRequest();
    }
}

// Former clients are left alone while they cost little. Those that came first go when many stay
// or when they leave much unread, or they would take the program's memory and descriptors.
void StatusServer::dropSurplusClients()
{
    const QList<QTcpSocket*> former = clients;
    qint64 unsent = 0;
    for (int newer = 0; newer < former.size(); ++newer) {
        QTcpSocket* socket = former.at(former.size() - 1 - newer);
        unsent += socket->bytesToWrite();
        if (newer >= mostFormerClients || unsent > mostUnsent) {
            drop(socket);
        }
    }
}

// Deliberate: whichever client goes, the newest goes with it. The protocol is for one client at
// a time.
void StatusServer::clientLeft(QTcpSocket* socket)
{
    dropClient();
    if (socket != client) {
        drop(socket); // its place was taken; nobody else keeps it
    }
}

void StatusServer::dropClient()
{
    emit clientChanged(false);
    if (client) {
        drop(client);
    }
}

// A socket that is dropped is not heard any more: it would report its end again while it dies.
void StatusServer::drop(QTcpSocket* socket)
{
    clients.removeOne(socket);
    socket->disconnect(this);
    socket->deleteLater();
}

void StatusServer::send(const QByteArray& bytes)
{
    for (int from = 0; from < bytes.size(); from += writeSize) {
        client->write(bytes.constData() + from, std::min(writeSize, bytes.size() - from));
    }
    client->flush();
}
