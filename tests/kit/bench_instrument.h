// An instrument on the bench, at the far end of a socket on port 5025, which serves one connection
// at a time as many do. Keeps every whole line, with the connection that it came over and the
// moment, and answers lines as it was told. An answer can be held back until the test lets it go.
//
// Lives in a thread of its own; any thread may ask it.
#pragma once

#include <QHash>
#include <QMutex>
#include <QPointer>
#include <QQueue>
#include <QSet>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <QtTest>

#include <chrono>

class BenchInstrument
{
public:
    // What becomes of a second connection while the first is open.
    enum class Second { IsServed, WaitsUnserved, IsClosedAtOnce };

    using Clock = std::chrono::steady_clock;

    struct Line
    {
        int connection; // counted from 1 in order of arrival
        QByteArray text;
        Clock::time_point at;
    };

    explicit BenchInstrument(const QString& address, Second newSecond = Second::IsServed)
        : second(newSecond)
    {
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] { accept(); });
        QObject::connect(
            &thread, &QThread::finished, &server, [this] { hangUp(); }, Qt::DirectConnection);
        thread.start();
        server.moveToThread(&thread);
        QMetaObject::invokeMethod(
            &server, [this, address] { listen(address); }, Qt::BlockingQueuedConnection);
    }

    ~BenchInstrument()
    {
        thread.quit();
        thread.wait();
    }

    bool isListening() const
    {
        const QMutexLocker lock(&mutex);
        return listening;
    }

    // What to send when this line (without its line feed) arrives. Other lines get no answer.
    void answer(const QByteArray& line, const QByteArray& text, int afterMs = 0)
    {
        const QMutexLocker lock(&mutex);
        answers[line] = {text, afterMs};
    }

    // From now on the answers to this line wait for release().
    void hold(const QByteArray& line)
    {
        const QMutexLocker lock(&mutex);
        held.insert(line);
    }
    void release()
    {
        const QMutexLocker lock(&mutex);
        held.clear();
        QMetaObject::invokeMethod(
            &server, [this] { sendHeld(); }, Qt::QueuedConnection);
    }

    QList<Line> lines() const
    {
        const QMutexLocker lock(&mutex);
        return received;
    }
    int count(const QByteArray& line) const
    {
        int found = 0;
        for (const Line& each : lines()) {
            found += each.text == line ? 1 : 0;
        }
        return found;
    }
    int connectionCount() const
    {
        const QMutexLocker lock(&mutex);
        return connections;
    }
    int openConnections() const
    {
        const QMutexLocker lock(&mutex);
        return open;
    }

private:
    struct Answer
    {
        QByteArray text;
        int afterMs = 0;
    };
    struct HeldAnswer
    {
        QPointer<QTcpSocket> socket;
        Answer answer;
    };

    void listen(const QString& address)
    {
        const bool isOpen = server.listen(QHostAddress(address), 5025);
        const QMutexLocker lock(&mutex);
        listening = isOpen;
    }

    void accept()
    {
        while (QTcpSocket* socket = server.nextPendingConnection()) {
            const QMutexLocker lock(&mutex);
            socket->setProperty("connection", ++connections);
            if (open > 0 && second == Second::IsClosedAtOnce) {
                socket->abort();
                continue;
            }
            ++open;
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this] { serve(); });
            QObject::connect(socket, &QTcpSocket::disconnected, socket,
                             [this, socket] { forget(socket); });
            waiting.enqueue(socket);
        }
        serve();
    }

    // Takes in what the connections sent whose turn it is.
    void serve()
    {
        const int served = second == Second::IsServed ? waiting.size() : qMin(waiting.size(), 1);
        for (int i = 0; i < served; ++i) {
            takeLines(waiting.at(i));
        }
    }

    void takeLines(QTcpSocket* socket)
    {
        while (socket->canReadLine()) {
            QByteArray text = socket->readLine();
            text.chop(1);
            const QMutexLocker lock(&mutex);
            received.append({socket->property("connection").toInt(), text, Clock::now()});
            if (!answers.contains(text)) {
                continue;
            }
            if (held.contains(text)) {
                heldAnswers.append({socket, answers.value(text)});
            } else {
                send(socket, answers.value(text));
            }
        }
    }

    static void send(QTcpSocket* socket, const Answer& answer)
    {
        QTimer::singleShot(answer.afterMs, Qt::PreciseTimer, socket,
                           [socket, text = answer.text] { socket->write(text); });
    }

    void sendHeld()
    {
        for (const HeldAnswer& each : qAsConst(heldAnswers)) {
            if (each.socket) {
                send(each.socket, each.answer);
            }
        }
        heldAnswers.clear();
    }

    // What it sent before it went counts.
    void forget(QTcpSocket* socket)
    {
        takeLines(socket);
        waiting.removeOne(socket);
        {
            const QMutexLocker lock(&mutex);
            --open;
        }
        serve();
    }

    void hangUp()
    {
        for (QTcpSocket* socket : server.findChildren<QTcpSocket*>()) {
            socket->disconnect();
            delete socket;
        }
        server.close();
    }

    const Second second;
    QThread thread;
    QTcpServer server;
    QQueue<QTcpSocket*> waiting; // the first is the one that is served
    QList<HeldAnswer> heldAnswers;
    bool listening = false;
    mutable QMutex mutex;
    QHash<QByteArray, Answer> answers;
    QSet<QByteArray> held;
    QList<Line> received;
    int connections = 0;
    int open = 0;
};
