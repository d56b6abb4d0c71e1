#include "simulator/scpi_server.h"

#include <QHostAddress>

#include <utility>

namespace {

constexpr qint64 readSize = 65536;
// A peer that asks on and on and never reads is dropped at so many unread bytes.
constexpr qint64 mostUnreadAnswers = 1 << 20;

QString peerName(const QTcpSocket& socket)
{
    return socket.peerAddress().toString() + ':' + QString::number(socket.peerPort());
}

} // namespace

ScpiConnection::ScpiConnection(std::unique_ptr<QIODevice> peer, const QString& peerName,
                               SimulatedInstrument& instrument, Sweep* instrumentSweep,
                               AnswerManner answerManner, QObject* parent)
    : QObject(parent),
      stream(std::move(peer)),
      session(instrument),
      sweep(instrumentSweep),
      manner(answerManner),
      name(peerName)
{
    delay.setSingleShot(true);
    delay.setInterval(manner.delay);
    connect(stream.get(), &QIODevice::readyRead, this, &ScpiConnection::proceed);
    connect(&delay, &QTimer::timeout, this, [this] {
        sendAnswers();
        proceed();
    });
    if (sweep != nullptr) {
        connect(sweep, &Sweep::ended, this, [this] {
            hasSweep = false;
            if (std::exchange(awaitsSweep, false)) {
                proceed();
            }
        });
    }
}

// The stream tells of its end while it is destroyed, when this is no connection any more.
ScpiConnection::~ScpiConnection()
{
    stream->disconnect();
}

void ScpiConnection::proceed()
{
    while (!isHeldUp() && stream->isOpen()) {
        runUnits();
        if (!isHeldUp() && !takeLine()) {
            return;
        }
    }
}

// The units of the next line; false when there is none yet.
bool ScpiConnection::takeLine()
{
    std::optional<ReceivedLine> line = lines.takeLine();
    while (!line && stream->bytesAvailable() > 0) {
        lines.append(stream->read(readSize));
        line = lines.takeLine();
    }
    if (!line) {
        return false;
    }
    emit logged(name + " << " + QString::fromLatin1(printable(line->text)));
    if (line->overrun) {
        session.refuse(ScpiError::InputOverrun, line->text);
    } else {
        units = scpiUnits(line->text);
    }
    return true;
}

void ScpiConnection::runUnits()
{
    while (nextUnit < units.size()) {
        const ScpiUnit& unit = units.at(nextUnit);
        awaitsSweep = mustAwaitSweep(unit);
        if (awaitsSweep) {
            return;
        }
        ++nextUnit;
        session.run(unit);
        if (sweep != nullptr && session.startsSweep(unit)) {
            hasSweep = true;
            sweep->start();
        }
    }
    finishLine();
}

// The standard's words wait for what this connection began: whoever sets the generator at a shared
// address isn't held up by the analyzer.
bool ScpiConnection::mustAwaitSweep(const ScpiUnit& unit) const
{
    return sweep != nullptr && sweep->isRunning() &&
           (ScpiSession::asksForResult(unit) ||
            (hasSweep && ScpiSession::waitsForCompletion(unit)));
}

void ScpiConnection::finishLine()
{
    units.clear();
    nextUnit = 0;
    answers = session.takeAnswers();
    if (answers.isEmpty() || manner.silent) {
        return;
    }
    if (manner.dropsClient) {
        emit mustEnd();
    } else if (manner.delay > 0) {
        delay.start();
    } else {
        sendAnswers();
    }
}

void ScpiConnection::sendAnswers()
{
    emit logged(name + " >> " + QString::fromLatin1(printable(answers)));
    stream->write(answers + '\n');
    if (stream->bytesToWrite() > mostUnreadAnswers) {
        emit mustEnd();
    }
}

ScpiServer::ScpiServer(SimulatedInstrument& simulated, Sweep* instrumentSweep, Clients howMany,
                       AnswerManner answerManner, QObject* parent)
    : QObject(parent),
      instrument(simulated),
      sweep(instrumentSweep),
      clients(howMany),
      manner(answerManner)
{
    connect(&server, &QTcpServer::newConnection, this, &ScpiServer::acceptWaiting);
}

bool ScpiServer::listen(const QHostAddress& address, quint16 port)
{
    return server.listen(address, port);
}

void ScpiServer::acceptWaiting()
{
    while (clients == Clients::Any || clientCount == 0) {
        std::unique_ptr<QTcpSocket> socket{server.nextPendingConnection()};
        if (socket == nullptr) {
            return;
        }
        serve(std::move(socket));
    }
}

void ScpiServer::serve(std::unique_ptr<QTcpSocket> owned)
{
    QTcpSocket* const socket = owned.get();
    socket->setParent(nullptr);
    socket->setReadBufferSize(readSize);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // answers are short
    ++clientCount;
    auto* connection =
        new ScpiConnection(std::move(owned), peerName(*socket), instrument, sweep, manner, this);
    connect(connection, &ScpiConnection::logged, this, &ScpiServer::logged);
    connect(connection, &ScpiConnection::mustEnd, socket, &QTcpSocket::abort);
    const auto end = [this, connection] {
        --clientCount;
        connection->deleteLater();
        acceptWaiting();
    };
    connect(socket, &QTcpSocket::disconnected, connection, end);
    // A client that had to wait may have spoken already, and may have gone.
    const bool isGone = socket->state() == QAbstractSocket::UnconnectedState;
    connection->proceed();
    if (isGone) {
        end();
    }
}
