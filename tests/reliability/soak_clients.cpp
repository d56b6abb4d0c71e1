// The network of the soak: one client that polls and fetches as fast as it can, and ten that
// connect, send garbage and vanish. Runs until it is killed. Takes the port, and says a byte for
// each answer.
#include <QHostAddress>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QThread>

#include <cstdio>
#include <thread>
#include <vector>

namespace {

const char* const requests[] = {"GetNewState", "GetSequenceLength", "GetSymbol", "GetSymbolRate",
                                "GetServerID"};

// Connects anew whenever another client has taken this one along, or its place.
void poll(quint16 port)
{
    QRandomGenerator random(0);
    while (true) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        if (!socket.waitForConnected(1000)) {
            QThread::msleep(random.bounded(20U)); // the port is about to change
            continue;
        }
        (void)socket.waitForReadyRead(1000); // the greeting
        socket.readAll();
        for (int round = 0;; ++round) {
            socket.write(requests[round % 5]);
            if (!socket.waitForReadyRead(500)) {
                break;
            }
            do {
                socket.readAll();
            } while (socket.waitForReadyRead(20));
            std::putchar('.');
            std::fflush(stdout);
        }
    }
}

QByteArray garbage(QRandomGenerator& random)
{
    QByteArray bytes(random.bounded(random.bounded(2) == 0 ? 30 : 100000), '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random.bounded(256));
    }
    return (random.bounded(2) == 0 ? QByteArray(requests[random.bounded(5)]) : QByteArray()) +
           bytes;
}

void vandalise(quint16 port, quint32 seed)
{
    QRandomGenerator random(seed);
    while (true) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, port);
        if (socket.waitForConnected(1000)) {
            socket.write(garbage(random));
            socket.waitForBytesWritten(50);
            socket.waitForReadyRead(random.bounded(50));
        }
        socket.abort();
        QThread::msleep(random.bounded(2000U)); // the polling client shall get something, too
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const auto port = static_cast<quint16>(argc > 1 ? std::atoi(argv[1]) : 0);
    std::vector<std::thread> vandals;
    for (quint32 seed = 1; seed <= 10; ++seed) {
        vandals.emplace_back(vandalise, port, seed);
    }
    poll(port);
}
