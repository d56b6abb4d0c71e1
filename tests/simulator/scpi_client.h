// A connection to an instrument for tests that share the event loop with it.
#pragma once

#include <QTcpSocket>
#include <QtTest>

class ScpiClient
{
public:
    bool connectTo(quint16 port, const QString& address = QStringLiteral("127.0.0.1"))
    {
        socket.connectToHost(address, port);
        return QTest::qWaitFor([this] { return socket.state() == QTcpSocket::ConnectedState; });
    }

    void send(const QByteArray& bytes)
    {
        socket.write(bytes);
        socket.flush();
    }

    // The next line without its end, or nothing within the time.
    QByteArray answer(int milliseconds = 10000)
    {
        (void)QTest::qWaitFor([this] { return socket.canReadLine(); }, milliseconds);
        return socket.readLine().trimmed();
    }

    QByteArray ask(const QByteArray& line)
    {
        send(line + '\n');
        return answer();
    }

    QTcpSocket socket;
};
