// An instrument at the far end of a socket: listens on a port of 127.0.0.1 in a thread of its
// own, keeps every byte that arrives, and answers lines as it was told.
#pragma once

#include <QMap>
#include <QMutex>
#include <QSemaphore>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <QtTest>

#include <memory>

class ScriptedInstrument
{
public:
    struct Piece
    {
        int afterMs; // counted from the arrival of the line
        QByteArray bytes;
        bool thenClose = false;
    };

    explicit ScriptedInstrument(quint16 port = 5025, const QString& address = "127.0.0.1")
    {
        thread.start();
        server.moveToThread(&thread);
        onThread([this, port, address] {
            QObject::connect(&server, &QTcpServer::newConnection, &server, [this] { accept(); });
            listening = server.listen(QHostAddress(address), port);
        });
    }

    ~ScriptedInstrument()
    {
        // A static one may outlive the application, and then no call arrives on the thread.
        if (QCoreApplication::instance() != nullptr) {
            onThread([this] {
                qDeleteAll(server.findChildren<QTcpSocket*>());
                server.close();
            });
        }
        thread.quit();
        thread.wait();
    }

    bool isListening() const { return listening; }

    // What to send when this line (without its line feed) arrives. Lines without an answer are
    // kept and nothing is said.
    void answer(const QByteArray& line, const QList<Piece>& pieces)
    {
        const QMutexLocker lock(&mutex);
        answers[line] = pieces;
    }
    void answer(const QByteArray& line, const QByteArray& bytes)
    {
        answer(line, {Piece{0, bytes}});
    }

    // Sends this over all connections. It waits at their other ends when this returns.
    void say(const QByteArray& bytes)
    {
        onThread([this, bytes] {
            for (QTcpSocket* socket : server.findChildren<QTcpSocket*>()) {
                socket->write(bytes);
                socket->flush();
            }
        });
    }

    // Everything that has arrived over all connections since the last take.
    QByteArray takeReceived()
    {
        const QMutexLocker lock(&mutex);
        return std::exchange(received, {});
    }

    // Waits until what has arrived ends with `end` (or five seconds), then takes it.
    QByteArray takeReceivedUpTo(const QByteArray& end)
    {
        (void)QTest::qWaitFor([&] {
            const QMutexLocker lock(&mutex);
            return received.endsWith(end);
        });
        return takeReceived();
    }

    int connectionCount()
    {
        const QMutexLocker lock(&mutex);
        return connections;
    }
    int openConnections()
    {
        const QMutexLocker lock(&mutex);
        return openSockets;
    }

private:
    template <class Work> void onThread(Work work)
    {
        // Shared, because releasing may go on when it has been acquired.
        const auto done = std::make_shared<QSemaphore>();
        QMetaObject::invokeMethod(
            &server,
            [&work, done] {
                work();
                done->release();
            },
            Qt::QueuedConnection);
        done->acquire();
    }

    void accept()
    {
        while (QTcpSocket* socket = server.nextPendingConnection()) {
            {
                const QMutexLocker lock(&mutex);
                ++connections;
                ++openSockets;
            }
            QObject::connect(socket, &QTcpSocket::readyRead, socket,
                             [this, socket] { take(socket); });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, [this] {
                const QMutexLocker lock(&mutex);
                --openSockets;
            });
        }
    }

    void take(QTcpSocket* socket)
    {
        const QByteArray bytes = socket->readAll();
        QList<QList<Piece>> toSend;
        {
            const QMutexLocker lock(&mutex);
            received += bytes;
            pending += bytes;
            for (int end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
                toSend.append(answers.value(pending.left(end)));
                pending.remove(0, end + 1);
            }
        }
        for (const QList<Piece>& pieces : toSend) {
            for (const Piece& piece : pieces) {
                QTimer::singleShot(piece.afterMs, Qt::PreciseTimer, socket, [socket, piece] {
                    socket->write(piece.bytes);
                    if (piece.thenClose) {
                        socket->disconnectFromHost();
                    }
                });
            }
        }
    }

    QThread thread;
    QTcpServer server;
    QMutex mutex;
    QMap<QByteArray, QList<Piece>> answers;
    QByteArray received;
    QByteArray pending;
    int connections = 0;
    int openSockets = 0;
    bool listening = false;
};
