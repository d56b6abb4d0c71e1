// Instruments on TCP or on a serial line: what connections have in common.
//
// The sweep belongs to the instrument: a connection that waits for its end is held up, the others
// go on. Runs in the event loop of its thread; no connection can hold it up or make it store more
// than a bounded number of bytes.
#pragma once

#include "simulator/line_buffer.h"
#include "simulator/scpi_session.h"
#include "simulator/sweep.h"

#include <QIODevice>
#include <QObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <memory>

// How an instrument deals with whoever asks it something, for trying what a program does then.
struct AnswerManner
{
    int delay = 0;            // ms before each line of answers
    bool silent = false;      // no answer at all
    bool dropsClient = false; // ends the connection in place of an answer
};

// One connection: owns its stream.
class ScpiConnection : public QObject
{
    Q_OBJECT

public:
    // name: for the log. sweep may be null for an instrument without one.
    ScpiConnection(std::unique_ptr<QIODevice> stream, const QString& name,
                   SimulatedInstrument& instrument, Sweep* sweep, AnswerManner manner,
                   QObject* parent);
    ~ScpiConnection() override;
    ScpiConnection(const ScpiConnection&) = delete;
    ScpiConnection& operator=(const ScpiConnection&) = delete;

    // Carries out what has come; called by itself for what comes later.
    void proceed();

signals:
    // One text a line that came and one an answer.
    void logged(const QString& text);
    // The connection must end: the peer asks on and on and never reads, or is to be dropped.
    void mustEnd();

private:
    bool takeLine();
    void runUnits();
    bool mustAwaitSweep(const ScpiUnit& unit) const;
    void finishLine();
    void sendAnswers();
    bool isHeldUp() const { return awaitsSweep || delay.isActive(); }

    std::unique_ptr<QIODevice> stream;
    ScpiSession session;
    Sweep* sweep;
    const AnswerManner manner;
    const QString name;
    LineBuffer lines;
    QVector<ScpiUnit> units; // of the line being carried out
    int nextUnit = 0;
    QByteArray answers;    // of the last line, not sent yet
    bool hasSweep = false; // under way and begun here
    bool awaitsSweep = false;
    QTimer delay;
};

enum class Clients { Any, OneAtATime };

class ScpiServer : public QObject
{
    Q_OBJECT

public:
    // instrument and sweep must outlive the server; sweep may be null. Of one client at a time the
    // second waits until the first has gone.
    ScpiServer(SimulatedInstrument& instrument, Sweep* sweep, Clients clients, AnswerManner manner,
               QObject* parent = nullptr);

    // Port 0 takes any free one. False when the address is taken; errorText tells.
    bool listen(const QHostAddress& address, quint16 port);
    quint16 port() const { return server.serverPort(); }
    QString errorText() const { return server.errorString(); }

signals:
    void logged(const QString& text);

private:
    void acceptWaiting();
    void serve(std::unique_ptr<QTcpSocket> socket);

    SimulatedInstrument& instrument;
    Sweep* sweep;
    const Clients clients;
    const AnswerManner manner;
    int clientCount = 0;
    QTcpServer server;
};
