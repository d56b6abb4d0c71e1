#include "simulator/scpi_server.h"

#include "simulator/signal_client.h"

#include <QHostAddress>

#include <utility>

namespace {

constexpr qint64 readSize = 65536;
// A peer that asks on and on and never reads is dropped at so many unread bytes.
constexpr qint64 mostUnreadAnswers = 1 << 20;
// Less than a program waits for an answer.
constexpr int sweepPatience = 2000; // ms

QString peerName(const QTcpSocket& socket)
{
    return socket.peerAddress().toString() + ':' + QString::number(socket.peerPort());
}

} // namespace

ScpiConnection::ScpiConnection(std::unique_ptr<QTcpSocket> peer, ScpiSession scpi,
                               SignalClient* source, QObject* parent)
    : QObject(parent),
      socket(std::move(peer)),
      session(std::move(scpi)),
      signalSource(source),
      name(peerName(*socket))
{
    socket->setReadBufferSize(readSize);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // answers are short
    patience.setSingleShot(true);
    patience.setInterval(sweepPatience);
    connect(socket.get(), &QTcpSocket::readyRead, this, &ScpiConnection::proceed);
    connect(socket.get(), &QTcpSocket::disconnected, this, &ScpiConnection::closed);
    connect(&patience, &QTimer::timeout, this, [this] { endSweep(awaitedPoll); });
    if (signalSource != nullptr) {
        connect(signalSource, &SignalClient::settled, this, &ScpiConnection::endSweep);
    }
}

// The socket tells of its end while it is destroyed, when this is no connection any more.
ScpiConnection::~ScpiConnection()
{
    socket->disconnect(this);
}

void ScpiConnection::proceed()
{
    while (awaitedPoll == 0 && socket->isOpen()) {
        runUnits();
        if (awaitedPoll == 0 && !takeLine()) {
            return;
        }
    }
}

// The units of the next line; false when there is none yet.
bool ScpiConnection::takeLine()
{
    std::optional<ReceivedLine> line = lines.takeLine();
    while (!line && socket->bytesAvailable() > 0) {
        lines.append(socket->read(readSize));
        line = lines.takeLine();
    }
    if (!line) {
        return false;
    }
    emit logged(name + " << " + QString::fromLatin1(printable(line->text)));
    if (line->overrun) {
        session.addError(ScpiError::InputOverrun, line->text);
    } else {
        units = scpiUnits(line->text);
    }
    return true;
}

void ScpiConnection::runUnits()
{
    while (nextUnit < units.size()) {
        const ScpiUnit& unit = units.at(nextUnit++);
        session.run(unit);
        if (ScpiSession::startsSweep(unit)) {
            beginSweep();
        }
        if (awaitedPoll != 0) {
            return;
        }
    }
    finishLine();
}

void ScpiConnection::beginSweep()
{
    awaitedPoll = signalSource != nullptr ? signalSource->refresh() : 0;
    if (awaitedPoll != 0) {
        patience.start();
    }
}

void ScpiConnection::endSweep(quint64 poll)
{
    if (awaitedPoll == 0 || poll < awaitedPoll) {
        return;
    }
    awaitedPoll = 0;
    patience.stop();
    proceed();
}

void ScpiConnection::finishLine()
{
    units.clear();
    nextUnit = 0;
    const QByteArray answers = session.takeAnswers();
    if (answers.isEmpty()) {
        return;
    }
    emit logged(name + " >> " + QString::fromLatin1(printable(answers)));
    socket->write(answers + '\n');
    if (socket->bytesToWrite() > mostUnreadAnswers) {
        socket->abort();
    }
}

ScpiServer::ScpiServer(Bench& simulatedBench, BenchFace benchFace,
                       const QByteArray& installedOptions, SignalClient* source, QObject* parent)
    : QObject(parent),
      bench(simulatedBench),
      face(benchFace),
      options(installedOptions),
      signalSource(source)
{
    connect(&server, &QTcpServer::newConnection, this, &ScpiServer::acceptAll);
}

bool ScpiServer::listen(const QHostAddress& address, quint16 port)
{
    return server.listen(address, port);
}

void ScpiServer::acceptAll()
{
    while (std::unique_ptr<QTcpSocket> socket{server.nextPendingConnection()}) {
        socket->setParent(nullptr);
        auto* connection = new ScpiConnection(std::move(socket), ScpiSession(bench, face, options),
                                              signalSource, this);
        connect(connection, &ScpiConnection::logged, this, &ScpiServer::logged);
        connect(connection, &ScpiConnection::closed, connection, &QObject::deleteLater);
    }
}
