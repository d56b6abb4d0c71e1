// A client of the status protocol for tests that share the event loop with the server.
#pragma once

#include "kit/event_wait.h"

#include <QTcpSocket>
#include <QtTest>

class StatusClient
{
public:
    // Fails the test, by returning false, when nothing listens on the port.
    bool connectTo(quint16 port)
    {
        socket.connectToHost(QStringLiteral("127.0.0.1"), port);
        return QTest::qWaitFor([this] { return socket.state() == QTcpSocket::ConnectedState; });
    }

    // Connects and takes the three records that the server sends unasked.
    bool isGreetedAt(quint16 port) { return connectTo(port) && take(24).size() == 24; }

    void send(const QByteArray& request)
    {
        socket.write(request);
        socket.flush();
    }

    // Exactly count bytes, or what came within the time.
    QByteArray take(int count, int milliseconds = 10000)
    {
        (void)eventsBring([this, count] { return socket.bytesAvailable() >= count; }, milliseconds);
        return socket.read(count);
    }

    QByteArray ask(const QByteArray& request, int count)
    {
        send(request);
        return take(count);
    }

    // Whether nothing more has come once the server has answered everything sent so far: the
    // answer to a last request follows directly.
    bool isSilentBeforeIdentity()
    {
        return ask("GetServerID", 100).left(4) == QByteArray::fromHex("04000000") &&
               socket.bytesAvailable() == 0;
    }

    QTcpSocket socket;
};
