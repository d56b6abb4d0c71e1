// The network of the soak: one client that polls and fetches as fast as it can, and ten that
// connect, send garbage and vanish. Runs until it is killed. Takes the port.
#include <QHostAddress>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QThread>

#include <thread>
#include <vector>

namespace {

const char* const requests[] = {"GetNewState", "GetSequenceLength", "GetSymbol", "GetSymbolRate",
                                "GetServerID"};

// Connects anew whenever another client has taken this one along.
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
        for (int round = 0; socket.state() == QAbstractSocket::ConnectedState; ++round) {
            socket.write(requests[round % 5]);
            while (socket.waitForReadyRead(20)) {
                socket.readAll();
            }
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
