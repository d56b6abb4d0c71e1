// Opening and closing a connection, against hosts that answer, refuse, or do neither.
#include "remote/tcp_connection.h"

#include "kit/full_listener.h"
#include "kit/system_limits.h"

#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <thread>

class TestTcpConnection : public QObject
{
    Q_OBJECT

private slots:
    void aHostThatAnswersIsConnected_data();
    void aHostThatAnswersIsConnected();
    void aRefusalIsToldAtOnce();
    void anAddressThatIsNoneIsNotReached();
    void withoutAFreeDescriptorNobodyIsReached();
    void aHostThatDoesNotAnswerTakesTheLimit();
    void aHostThatDoesNotAnswerIsGivenUpWhenBrokenOff();
    void nobodyConnectsAfterBreakingOff();
    void aPeerThatHangsUpAtOnceCostsNothing();
    void aPeerThatDoesNotHangUpIsWaitedForAtMostTheLimit();
    void aLateAnswerDoesNotEndTheWaitForTheHangUp();
    void hangingUpIsBrokenOff();
    void anUnconnectedSocketHangsUpAtOnce();
};

namespace {

constexpr quint16 port = 5025;
const QHostAddress localhost(QHostAddress::LocalHost);

// The far end, in a thread of its own: takes one connection in and does with it what it is told.
class Peer
{
public:
    template <class Serve> explicit Peer(const QHostAddress& address, Serve serve)
    {
        listening = server.listen(address, port);
        descriptor = static_cast<int>(server.socketDescriptor());
        thread = std::thread([this, serve] {
            pollfd arrival{descriptor, POLLIN, 0}; // the server's descriptor doesn't block
            ::poll(&arrival, 1, 10000);
            const int accepted = ::accept(descriptor, nullptr, nullptr);
            serve(accepted);
            ::close(accepted);
        });
    }
    ~Peer() { thread.join(); }

    bool listening = false;

private:
    QTcpServer server;
    int descriptor = -1;
    std::thread thread;
};

// Everything up to the end of what the near end sends.
void readToTheEnd(int descriptor)
{
    char bytes[256];
    while (::read(descriptor, bytes, sizeof(bytes)) > 0) {
    }
}

} // namespace

void TestTcpConnection::aHostThatAnswersIsConnected_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("IPv4") << "127.0.0.1";
    QTest::newRow("IPv4, another") << "127.0.0.2";
    QTest::newRow("IPv6") << "::1";
}

void TestTcpConnection::aHostThatAnswersIsConnected()
{
    QFETCH(QString, address);
    if (address == "::1" && !QTcpServer().listen(QHostAddress(address), 0)) {
        QSKIP("no IPv6 on this machine");
    }
    const Peer peer(QHostAddress(address), [](int accepted) {
        char byte = 0;
        while (::read(accepted, &byte, 1) == 1 && ::write(accepted, &byte, 1) == 1) {
        }
    });
    QVERIFY(peer.listening);
    const Patience patience;
    QTcpSocket socket;
    QVERIFY(connectSocket(socket, QHostAddress(address), port, 3000, patience));
    QCOMPARE(socket.state(), QAbstractSocket::ConnectedState);
    socket.write("x");
    QVERIFY(socket.waitForReadyRead(3000));
    QCOMPARE(socket.readAll(), QByteArray("x"));
}

void TestTcpConnection::aRefusalIsToldAtOnce()
{
    const Patience patience;
    QTcpSocket socket;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!connectSocket(socket, QHostAddress("127.0.0.9"), port, 30000, patience));
    QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
    QCOMPARE(socket.state(), QAbstractSocket::UnconnectedState);
}

void TestTcpConnection::anAddressThatIsNoneIsNotReached()
{
    const Patience patience;
    QTcpSocket socket;
    QVERIFY(!connectSocket(socket, QHostAddress(), port, 3000, patience));
    QVERIFY(!connectSocket(socket, QHostAddress("analyzer.lab"), port, 3000, patience));
}

void TestTcpConnection::withoutAFreeDescriptorNobodyIsReached()
{
    QTcpServer server;
    QVERIFY(server.listen(localhost, port)); // somebody would answer
    const Patience patience;
    QTcpSocket socket;
    bool connected = true;
    {
        const LoweredLimit noDescriptors(RLIMIT_NOFILE, 0);
        connected = connectSocket(socket, localhost, port, 3000, patience);
    }
    QVERIFY(!connected);
    QVERIFY(connectSocket(socket, localhost, port, 3000, patience));
}

void TestTcpConnection::aHostThatDoesNotAnswerTakesTheLimit()
{
    const FullListener host("127.0.0.1", port);
    QVERIFY(host.isFull());
    const Patience patience;
    QTcpSocket socket;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!connectSocket(socket, localhost, port, 500, patience));
    QVERIFY2(timer.elapsed() >= 490, QByteArray::number(timer.elapsed()));
    QVERIFY2(timer.elapsed() < 5000, QByteArray::number(timer.elapsed()));
}

void TestTcpConnection::aHostThatDoesNotAnswerIsGivenUpWhenBrokenOff()
{
    const FullListener host("127.0.0.1", port);
    QVERIFY(host.isFull());
    Patience patience;
    bool connected = true;
    std::thread connecting([&] {
        QTcpSocket socket;
        connected = connectSocket(socket, localhost, port, 30000, patience);
    });
    const bool waits = host.awaitConnecting();
    QElapsedTimer timer;
    timer.start();
    patience.end();
    connecting.join();
    QVERIFY(waits);
    QVERIFY(!connected);
    QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
}

void TestTcpConnection::nobodyConnectsAfterBreakingOff()
{
    const FullListener host("127.0.0.1", port);
    Patience patience;
    patience.end();
    QTcpSocket socket;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!connectSocket(socket, localhost, port, 30000, patience));
    QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
}

void TestTcpConnection::aPeerThatHangsUpAtOnceCostsNothing()
{
    const Peer peer(localhost, readToTheEnd);
    const Patience patience;
    QTcpSocket socket;
    QVERIFY(connectSocket(socket, localhost, port, 3000, patience));
    QElapsedTimer timer;
    timer.start();
    hangUp(socket, 30000, patience);
    QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
    QVERIFY(socket.state() != QAbstractSocket::ConnectedState); // it has been seen
}

void TestTcpConnection::aPeerThatDoesNotHangUpIsWaitedForAtMostTheLimit()
{
    std::atomic<bool> done{false};
    const Peer peer(localhost, [&done](int accepted) {
        readToTheEnd(accepted);
        while (!done) {
            std::this_thread::yield();
        }
    });
    const Patience patience;
    QTcpSocket socket;
    QVERIFY(connectSocket(socket, localhost, port, 3000, patience));
    QElapsedTimer timer;
    timer.start();
    hangUp(socket, 500, patience);
    const qint64 taken = timer.elapsed();
    done = true;
    QVERIFY2(taken >= 490, QByteArray::number(taken));
    QVERIFY2(taken < 5000, QByteArray::number(taken));
}

void TestTcpConnection::aLateAnswerDoesNotEndTheWaitForTheHangUp()
{
    std::atomic<bool> closed{false};
    const Peer peer(localhost, [&closed](int accepted) {
        readToTheEnd(accepted);
        const bool sent = ::write(accepted, "late\n", 5) == 5;
        pollfd nothing{accepted, 0, 0};
        ::poll(&nothing, 0, 300); // the device takes its time to close
        closed = sent;
    });
    const Patience patience;
    QTcpSocket socket;
    QVERIFY(connectSocket(socket, localhost, port, 3000, patience));
    hangUp(socket, 30000, patience);
    QVERIFY(closed);
    QVERIFY(socket.state() != QAbstractSocket::ConnectedState);
}

void TestTcpConnection::hangingUpIsBrokenOff()
{
    std::atomic<bool> asked{false};
    std::atomic<bool> done{false};
    const Peer peer(localhost, [&](int accepted) {
        readToTheEnd(accepted);
        asked = true;
        while (!done) {
            std::this_thread::yield();
        }
    });
    Patience patience;
    std::thread hangingUp([&] {
        QTcpSocket socket;
        if (connectSocket(socket, localhost, port, 3000, patience)) {
            hangUp(socket, 30000, patience);
        }
    });
    while (!asked) {
        std::this_thread::yield();
    }
    QElapsedTimer timer;
    timer.start();
    patience.end();
    hangingUp.join();
    done = true;
    QVERIFY2(timer.elapsed() < 10000, QByteArray::number(timer.elapsed()));
}

void TestTcpConnection::anUnconnectedSocketHangsUpAtOnce()
{
    const Patience patience;
    QTcpSocket socket;
    QElapsedTimer timer;
    timer.start();
    hangUp(socket, 30000, patience);
    QVERIFY(timer.elapsed() < 10000);
}

QTEST_GUILESS_MAIN(TestTcpConnection)
#include "test_tcp_connection.moc"
