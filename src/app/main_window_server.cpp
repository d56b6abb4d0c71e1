// The TCP status server: one client at a time, on the main thread.
#include "app/main_window.h"
#include "status/status_replies.h"
#include "ui_main_window.h"

#include <QDebug>
#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>

namespace {

constexpr int requestSize = 1024;                    // bytes of one read
constexpr int writeSize = 64000;                     // bytes of one write
constexpr qint64 mostUnread = 1048576;               // bytes; the rest waits in the client
constexpr qint64 mostUnsent = qint64{256} * 1048576; // bytes; a client that has not read them waits
constexpr int mostFormerClients = 32; // each holds a descriptor, of which a process has few

} // namespace

void MainWindow::openServer(quint16 port)
{
    tcpServer = new QTcpServer(this);
    tcpServer->listen(QHostAddress::Any, port);
    connect(tcpServer, &QTcpServer::newConnection, this, &MainWindow::new_connection);
}

void MainWindow::closeServer()
{
    if (tcpServer) {
        tcpServer->close();
        tcpServer->deleteLater();
    }
}

void MainWindow::on_port_input_valueChanged(int value)
{
    setup.tcpPort = static_cast<quint16>(value);
    closeServer();
    openServer(setup.tcpPort);
    notifyPropertyChanged(ui->port_input);
}

// The second of two clients takes the place of the first, which is neither closed nor told.
void MainWindow::new_connection()
{
    // A server that was replaced still reports connections, which the present one doesn't have.
    QTcpSocket* socket = tcpServer->nextPendingConnection();
    if (socket == nullptr) {
        return;
    }
    dropSurplusClients();
    socket->setParent(this); // outlives a change of the port
    socket->setReadBufferSize(mostUnread);
    tcpSocket = socket;
    requestWaits = false;
    connect(socket, &QTcpSocket::readyRead, this, &MainWindow::read_connection);
    connect(socket, &QTcpSocket::bytesWritten, this, &MainWindow::readWhatWaits);
    connect(socket, &QTcpSocket::disconnected, this, &MainWindow::disconnected);
    send(greeting(setup));
    // A client that went while it was greeted has already been reported as gone.
    if (socket->state() == QAbstractSocket::ConnectedState) {
        setup.tcpState = 0;
    }
    notifyPropertyChanged();
}

// One reply a read: what follows the first word is dropped, and a request split over two reads
// is not recognised. Clients send one request and wait for its answer.
void MainWindow::read_connection()
{
    if (!tcpSocket) {
        return;
    }
    // A client that asks and never reads would make the program hold ever more for it.
    requestWaits = tcpSocket->bytesToWrite() > mostUnsent;
    if (requestWaits) {
        return;
    }
    char buffer[requestSize];
    const qint64 count = tcpSocket->read(buffer, sizeof(buffer));
    const QString request =
        QString::fromLocal8Bit(buffer, static_cast<int>(std::max<qint64>(count, 0)));
    qDebug() << "<< " << request;
    send(replyTo(request, setup));
}

// Only the read that was put off: what lies beyond the bytes of an earlier read waits for more.
void MainWindow::readWhatWaits()
{
    if (requestWaits) {
        read_connection();
    }
}

// Former clients are left alone while they cost little. Those that came first go when many stay
// or when they leave much unread, or they would take the program's memory and descriptors.
void MainWindow::dropSurplusClients()
{
    const QList<QTcpSocket*> clients =
        findChildren<QTcpSocket*>(QString(), Qt::FindDirectChildrenOnly);
    qint64 unsent = 0;
    for (int newer = 0; newer < clients.size(); ++newer) {
        QTcpSocket* client = clients.at(clients.size() - 1 - newer);
        unsent += client->bytesToWrite();
        if (newer >= mostFormerClients || unsent > mostUnsent) {
            drop(client);
        }
    }
}

// A socket that is dropped is not heard any more: it would report its end again while it dies.
void MainWindow::drop(QTcpSocket* socket)
{
    if (socket != nullptr) {
        socket->disconnect(this);
        socket->deleteLater();
    }
}

// Deliberate: whichever client goes, the present one goes with it. The protocol is for one
// client at a time.
void MainWindow::disconnected()
{
    setup.tcpState = 1;
    notifyPropertyChanged();
    drop(tcpSocket);
    if (sender() != tcpSocket) {
        drop(qobject_cast<QTcpSocket*>(sender())); // its place was taken; nobody else keeps it
    }
}

void MainWindow::send(const QByteArray& bytes)
{
    for (int from = 0; from < bytes.size(); from += writeSize) {
        tcpSocket->write(bytes.constData() + from, std::min(writeSize, bytes.size() - from));
    }
    tcpSocket->flush();
}
