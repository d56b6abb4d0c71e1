// The TCP status server: waits on a port, serves the newest of its clients and keeps what a
// client can make the program hold within bounds. The bytes are those of status_replies.h.
//
// Only the newest client is heard: it takes the place of the one before, which is neither closed
// nor told. Whichever client goes, the newest goes with it. A reply answers one read; what
// follows its first word is dropped, and a request split over two reads is not recognised.
//
// Bounds: 1 MiB unread of a client, the rest waits on its side; a client with 256 MiB unsent is
// not read until it has taken some; former clients go, the oldest first, when there are more than
// 32 of them or when all clients together leave 256 MiB unsent; a client that leaves the process
// fewer than 8 descriptors is dropped at once.
//
// Main thread, where alone the record changes; never blocks. No widget.
#pragma once

#include "status/request_log.h"

#include <QList>
#include <QObject>
#include <QPointer>

struct MeasurementSetup;
class QTcpServer;
class QTcpSocket;

class StatusServer : public QObject
{
    Q_OBJECT

public:
    // Replies tell of setup and clear its newDataFlag; not owned. Servers and clients are children
    // of parent, which is never null.
    StatusServer(MeasurementSetup& setup, QObject* parent);

    // Ends the present server and all clients, unheard.
    ~StatusServer() override;

    // Waits for clients on a port of every address; 0 lets the system choose. A port that can't
    // be had goes unnoticed. A former server that close() didn't end stays open, and its clients
    // are served like any other.
    void listen(quint16 port);
    // Ends the present server; its clients stay connected.
    void close();
    // Where the present server waits; 0 when it doesn't.
    quint16 port() const;

    // What happens when a server or a client reports. Each is harmless when nothing waits.
    void takeClient(); // of the present server
    void answerRequest();
    void dropClient();

signals:
    // A client was greeted (true), or one has gone and the newest is let go of (false).
    void clientChanged(bool connected);

private:
    void takeClientOf(QTcpServer* from);
    void watch(QTcpSocket* socket);
    void clientLeft(QTcpSocket* socket);
    void answerWhatWaits();
    void dropSurplusClients();
    void drop(QTcpSocket* socket);
    void send(const QByteArray& bytes);

    MeasurementSetup& setup;
    QPointer<QTcpServer> server;
    QPointer<QTcpSocket> client; // the newest; one slot, not a list
    QList<QTcpSocket*> clients;  // all that are heard, the oldest first
    bool requestWaits = false;   // of the newest client, until it has taken more
    RequestLog log;
};
