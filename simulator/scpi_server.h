// Instruments on TCP: any number of connections to one address of the bench.
//
// A sweep ("INIT") first takes the newest signal: the connection that asked for it waits, the
// others go on. Runs in the event loop of its thread; no connection can hold it up or make it
// store more than a bounded number of bytes.
#pragma once

#include "simulator/line_buffer.h"
#include "simulator/scpi_session.h"

#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <memory>

class SignalClient;

// One connection: owns its socket.
class ScpiConnection : public QObject
{
    Q_OBJECT

public:
    // source: where new signals come from; null when the signal never changes.
    ScpiConnection(std::unique_ptr<QTcpSocket> peer, ScpiSession scpi, SignalClient* source,
                   QObject* parent);
    ~ScpiConnection() override;
    ScpiConnection(const ScpiConnection&) = delete;
    ScpiConnection& operator=(const ScpiConnection&) = delete;

signals:
    // One text a line that came and one an answer.
    void logged(const QString& text);
    void closed();

private:
    void proceed();
    bool takeLine();
    void runUnits();
    void beginSweep();
    void endSweep(quint64 poll);
    void finishLine();

    std::unique_ptr<QTcpSocket> socket;
    ScpiSession session;
    SignalClient* signalSource;
    const QString name; // for the log
    LineBuffer lines;
    QVector<ScpiUnit> units; // of the line being carried out
    int nextUnit = 0;
    quint64 awaitedPoll = 0; // 0: waiting for none
    QTimer patience;         // for a signal that doesn't come
};

class ScpiServer : public QObject
{
    Q_OBJECT

public:
    // bench and source must outlive the server; source may be null.
    ScpiServer(Bench& bench, BenchFace face, const QByteArray& options, SignalClient* source,
               QObject* parent = nullptr);

    // Port 0 takes any free one. False when the address is taken; errorText tells.
    bool listen(const QHostAddress& address, quint16 port);
    quint16 port() const { return server.serverPort(); }
    QString errorText() const { return server.errorString(); }

signals:
    void logged(const QString& text);

private:
    void acceptAll();

    Bench& bench;
    const BenchFace face;
    const QByteArray options;
    SignalClient* signalSource;
    QTcpServer server;
};
