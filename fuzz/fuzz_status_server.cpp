// The status server over a real socket: an input is a number of writes, each a byte that tells its
// length and then so many bytes. What comes back is made of whole replies and nothing else, and the
// next client is served.
#include "fuzz/input_file.h"
#include "setup/measurement_setup.h"
#include "status/status_server.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTcpSocket>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <sys/socket.h>

namespace {

constexpr int samples = 64;
constexpr int greetingSize = 24; // bytes
constexpr int identitySize = 100;

void await(const std::function<bool()>& hasCome)
{
    constexpr int longest = 5000; // ms
    QElapsedTimer timer;
    timer.start();
    while (!hasCome()) {
        QCoreApplication::processEvents();
        if (timer.elapsed() > longest) {
            std::abort();
        }
    }
}

// Closed without a trace, or the system would run out of ports.
void closeAtOnce(QTcpSocket& socket)
{
    const linger none = {1, 0};
    setsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &none,
               sizeof(none));
    socket.abort();
}

void connectTo(const StatusServer& server, QTcpSocket& socket)
{
    socket.connectToHost(QStringLiteral("127.0.0.1"), server.port());
    await([&] { return socket.bytesAvailable() >= greetingSize; });
}

int sizeOfReply(quint32 tag)
{
    switch (tag) {
    case 0:
    case 1:
    case 3:
        return 8;
    case 2:
        return (2 * samples + 1) * 4;
    case 4:
        return identitySize;
    default:
        std::abort();
    }
}

bool isWholeReplies(const QByteArray& bytes)
{
    int at = 0;
    while (at + 4 <= bytes.size()) {
        at += sizeOfReply(qFromLittleEndian<quint32>(bytes.constData() + at));
    }
    return at == bytes.size();
}

void write(QTcpSocket& socket, const QByteArray& input)
{
    for (int at = 0; at < input.size();) {
        const int length = static_cast<quint8>(input.at(at));
        socket.write(input.mid(at + 1, length));
        socket.flush();
        QCoreApplication::processEvents();
        at += 1 + length;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static int argc = 0;
    static const QCoreApplication application(argc, nullptr);
    QObject owner;
    MeasurementSetup setup;
    setup.signal.reset(samples);
    setup.newDataFlag = true;
    StatusServer server(setup, &owner);
    server.listen(0);
    QTcpSocket client;
    connectTo(server, client);
    write(client, bytesOf(data, size));
    QTcpSocket next; // greeted after the other one was read
    connectTo(server, next);
    QCoreApplication::processEvents();
    if (!isWholeReplies(client.readAll())) {
        std::abort();
    }
    next.write("GetServerID");
    await([&] { return next.bytesAvailable() >= greetingSize + identitySize; });
    closeAtOnce(client);
    closeAtOnce(next);
    return 0;
}
