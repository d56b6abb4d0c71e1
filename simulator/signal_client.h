// Fetches the program's signal from its status server: at the first contact whatever the program
// has, then whenever it says that there is something new. Keeps asking when the program goes away
// and comes back.
//
// The server serves one client at a time, the newest. One request is under way at a time. Runs in
// the event loop of its thread.
#pragma once

#include "simulator/played_signal.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTcpSocket>
#include <QTimer>

// When the client does what of its own accord, in milliseconds.
struct SignalClientTiming
{
    int pollInterval = 200;
    int stallTimeout = 5000; // without a byte that is due; then it connects anew
};

class SignalClient : public QObject
{
    Q_OBJECT

public:
    // Starts at once on 127.0.0.1.
    SignalClient(quint16 port, SignalClientTiming timing, QObject* parent = nullptr);
    ~SignalClient() override;
    SignalClient(const SignalClient&) = delete;
    SignalClient& operator=(const SignalClient&) = delete;

    // Asks now rather than at the next interval. The number of the poll whose end tells that
    // everything was fetched that the program had when this was called; 0 when there is no program
    // to ask.
    quint64 refresh();

signals:
    // The program's signal, of playable length or empty.
    void received(const PlayedSignal& signal);
    // All polls up to this one are over, whether they brought something or not.
    void settled(quint64 poll);
    // The program's signal can't be played.
    void refused(const QString& why);

private:
    // What is due from the server.
    enum class Awaited { Nothing, Greeting, State, FirstSymbols, Rest };

    void tick();
    void greet();
    void poll();
    void ask(const QByteArray& request, Awaited answer);
    void read();
    bool readSome();
    bool readGreeting();
    bool readState();
    bool readFirstSymbols();
    bool readRest();
    void deliver(const PlayedSignal& signal);
    void settle();
    void dropConnection();

    const quint16 port;
    const SignalClientTiming timing;
    QTcpSocket socket;
    QTimer timer;
    QElapsedTimer sinceLastByte;
    QByteArray reply;
    Awaited awaited = Awaited::Nothing;
    double symbolRate = 0.0; // Hz, as last told
    quint64 currentPoll = 0; // under way or the last one
    quint64 wantedPoll = 0;  // ask again up to this one
};
