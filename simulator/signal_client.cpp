#include "simulator/signal_client.h"

#include "simulator/signal_replies.h"

#include <QHostAddress>

namespace {

constexpr int greetingSize = 3 * recordSize;
// The longest complete reply: records, symbols, identity.
constexpr int longestReply = (longestSignal + 64) * recordSize;

} // namespace

SignalClient::SignalClient(quint16 statusPort, SignalClientTiming clientTiming, QObject* parent)
    : QObject(parent), port(statusPort), timing(clientTiming)
{
    connect(&socket, &QTcpSocket::connected, this, &SignalClient::greet);
    connect(&socket, &QTcpSocket::readyRead, this, &SignalClient::read);
    connect(&socket, &QTcpSocket::disconnected, this, &SignalClient::dropConnection);
    connect(&timer, &QTimer::timeout, this, &SignalClient::tick);
    timer.start(timing.pollInterval);
    tick();
}

// The socket tells of its end while it is destroyed, when this is no client any more.
SignalClient::~SignalClient()
{
    socket.disconnect(this);
}

quint64 SignalClient::refresh()
{
    if (socket.state() != QTcpSocket::ConnectedState) {
        return 0;
    }
    if (awaited == Awaited::Nothing) {
        poll();
        return currentPoll;
    }
    // The answer that is due may be older than this call; the one after it isn't.
    wantedPoll = currentPoll + 1;
    return wantedPoll;
}

void SignalClient::tick()
{
    if (socket.state() == QTcpSocket::UnconnectedState) {
        socket.connectToHost(QHostAddress::LocalHost, port);
    } else if (socket.state() != QTcpSocket::ConnectedState) {
        return;
    } else if (awaited == Awaited::Nothing) {
        poll();
    } else if (sinceLastByte.elapsed() > timing.stallTimeout) {
        socket.abort();
    }
}

// The server speaks first.
void SignalClient::greet()
{
    ++currentPoll;
    awaited = Awaited::Greeting;
    sinceLastByte.start();
}

void SignalClient::poll()
{
    ++currentPoll;
    ask("GetNewState", Awaited::State);
}

void SignalClient::ask(const QByteArray& request, Awaited answer)
{
    awaited = answer;
    sinceLastByte.start();
    socket.write(request);
    socket.flush();
}

void SignalClient::read()
{
    sinceLastByte.start();
    if (awaited == Awaited::Nothing) {
        socket.readAll(); // nothing is due, so it has no meaning
        return;
    }
    reply += socket.readAll();
    if (reply.size() > longestReply) {
        socket.abort();
        return;
    }
    while (readSome()) {
    }
}

// One step on what has come; false when more bytes are needed or nothing is due.
bool SignalClient::readSome()
{
    switch (awaited) {
    case Awaited::Nothing:
        return false;
    case Awaited::Greeting:
        return readGreeting();
    case Awaited::State:
        return readState();
    case Awaited::FirstSymbols:
        return readFirstSymbols();
    case Awaited::Rest:
        return readRest();
    }
    return false;
}

// The greeting uses up the news of a signal without sending it, and a program that told an earlier
// client tells no more; so the first thing is to fetch what there is.
bool SignalClient::readGreeting()
{
    if (reply.size() < greetingSize) {
        return false;
    }
    symbolRate = recordValue(reply, ReplyTag::SymbolRate, symbolRate);
    reply.clear();
    ask("GetSymbol", Awaited::FirstSymbols);
    return true;
}

bool SignalClient::readState()
{
    if (reply.size() < recordSize) {
        return false;
    }
    if (recordValue(reply, ReplyTag::NewState, 0.0) == 0.0) {
        settle();
        return false;
    }
    ask("GetServerID", Awaited::Rest);
    return true;
}

// A request that comes together with the one before it is not heard; the first bytes of an answer
// tell that the request was.
bool SignalClient::readFirstSymbols()
{
    if (reply.isEmpty()) {
        return false;
    }
    ask("GetServerID", Awaited::Rest);
    return true;
}

bool SignalClient::readRest()
{
    if (!reply.endsWith(serverIdentity())) {
        return false;
    }
    reply.chop(serverIdentity().size());
    symbolRate = recordValue(reply, ReplyTag::SymbolRate, symbolRate);
    const PlayedSignal signal = signalInReply(reply, symbolRate);
    reply = QByteArray(); // gives its memory back
    deliver(signal);
    settle();
    return false;
}

void SignalClient::deliver(const PlayedSignal& signal)
{
    if (signal.size() == 0 || (isPlayableLength(signal.size()) && signal.sampleRate > 0.0)) {
        emit received(signal);
    } else {
        emit refused(QStringLiteral("cannot play %1 symbols at %2 Hz")
                         .arg(signal.size())
                         .arg(signal.sampleRate));
        emit received({});
    }
}

void SignalClient::settle()
{
    awaited = Awaited::Nothing;
    reply.clear();
    const quint64 ended = currentPoll;
    if (wantedPoll > currentPoll) {
        poll();
    }
    emit settled(ended);
}

void SignalClient::dropConnection()
{
    awaited = Awaited::Nothing;
    reply = QByteArray();
    currentPoll = qMax(currentPoll, wantedPoll);
    emit settled(currentPoll);
}
