// The program's status server as a test wants it: same words, same order of bytes, one reply a
// read.
#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <QtEndian>
#include <QtTest>

#include <cmath>

class FakeProgram
{
public:
    FakeProgram()
    {
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] { accept(); });
    }

    bool listen(quint16 port = 0) { return server.listen(QHostAddress::LocalHost, port); }
    quint16 port() const { return server.serverPort(); }

    // As after a calculation: a lone line on a grid of one hertz, and news of it.
    void calculateTone(int count, int line)
    {
        samples.clear();
        for (int n = 0; n < count; ++n) {
            const double angle = 2.0 * 3.141592653589793 * line * n / count;
            samples << float(std::cos(angle)) << float(std::sin(angle));
        }
        sampleRate = float(count);
        hasNews = true;
    }

    // As a program that goes away.
    void stop()
    {
        server.close();
        if (client != nullptr) {
            client->abort();
        }
    }

    QVector<float> samples; // I and Q in turn
    float sampleRate = 100e6F;
    bool hasNews = false;
    bool silent = false; // takes connections and says nothing
    int connectionCount = 0;
    QByteArrayList requests;

private:
    static QByteArray word(quint32 value)
    {
        QByteArray bytes(4, '\0');
        qToLittleEndian(value, bytes.data());
        return bytes;
    }

    static QByteArray number(float value)
    {
        QByteArray bytes(4, '\0');
        qToLittleEndian(value, bytes.data());
        return bytes;
    }

    QByteArray newState() { return word(3) + number(std::exchange(hasNews, false) ? 1.0F : 0.0F); }
    QByteArray length() const { return word(1) + number(131072.0F); } // of the settings
    QByteArray rate() const { return word(0) + number(sampleRate); }

    QByteArray symbols() const
    {
        QByteArray block(4 + 4 * samples.size(), '\0');
        qToLittleEndian(quint32{2}, block.data());
        qToLittleEndian<float>(samples.constData(), samples.size(), block.data() + 4);
        return block;
    }

    QByteArray replyTo(const QByteArray& request)
    {
        if (request.startsWith("GetServerID")) {
            return word(4) + QByteArray("Noise Power Ratio").leftJustified(96, '\0');
        }
        if (request.startsWith("GetNewState")) {
            const bool news = hasNews;
            return newState() + (news ? rate() + length() + symbols() : QByteArray());
        }
        return request.startsWith("GetSymbol") ? symbols() : QByteArray();
    }

    void accept()
    {
        client = server.nextPendingConnection();
        ++connectionCount;
        if (!silent) {
            client->write(newState() + length() + rate());
        }
        QObject::connect(client, &QTcpSocket::readyRead, &server, [this] {
            const QByteArray request = client->read(1024);
            requests << request;
            if (!silent) {
                client->write(replyTo(request));
            }
        });
    }

    QTcpServer server;
    QTcpSocket* client = nullptr; // owned by the server
};
