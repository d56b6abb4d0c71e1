// A host that doesn't answer: its listener has no room left, so that whoever connects waits. With
// room for one it serves that connection as it is told, and never closes it.
//
// Linux: a listener with a backlog of 0 takes one connection in, and drops the requests of others.
#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFile>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

class FullListener
{
public:
    enum class Room { ForNobody, ForOne };

    FullListener(const char* address, quint16 port, Room room = Room::ForNobody)
        : listener(::socket(AF_INET, SOCK_STREAM, 0))
    {
        const int on = 1;
        setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
        place.sin_family = AF_INET;
        place.sin_port = htons(port);
        inet_pton(AF_INET, address, &place.sin_addr);
        works = ::bind(listener, where(), sizeof(place)) == 0 && ::listen(listener, 0) == 0;
        if (room == Room::ForNobody) {
            filler = ::socket(AF_INET, SOCK_STREAM, 0);
            works = works && ::connect(filler, where(), sizeof(place)) == 0;
        }
    }
    ~FullListener()
    {
        for (const int each : {first, filler, listener}) {
            if (each >= 0) {
                ::close(each);
            }
        }
    }
    FullListener(const FullListener&) = delete;
    FullListener& operator=(const FullListener&) = delete;

    bool isFull() const { return works; }

    // Waits until somebody's request for a connection to this port stands in the system's table.
    bool awaitConnecting() const
    {
        const QByteArray to = QByteArray::number(ntohs(place.sin_port), 16).toUpper() + " 02 ";
        const QDeadlineTimer limit(2500);
        while (!limit.hasExpired()) {
            QFile table(QStringLiteral("/proc/net/tcp"));
            if (table.open(QIODevice::ReadOnly) && table.readAll().contains(to)) {
                return true;
            }
        }
        return false;
    }

    // Takes the first connection in and answers its first line.
    bool answerFirst(const QByteArray& line, const QByteArray& answer)
    {
        first = ::accept(listener, nullptr, nullptr);
        return receive(line.size()) == line &&
               ::write(first, answer.constData(), size_t(answer.size())) == answer.size();
    }
    // Reads to the end of what the first connection has to say.
    QByteArray awaitHangUpOfFirst() { return receive(100000); }

private:
    const sockaddr* where() const { return reinterpret_cast<const sockaddr*>(&place); }

    QByteArray receive(int count) const
    {
        QByteArray received;
        char byte = 0;
        pollfd waiting{first, POLLIN, 0};
        while (received.size() < count && ::poll(&waiting, 1, 3000) == 1 &&
               ::read(first, &byte, 1) == 1) {
            received.append(byte);
        }
        return received;
    }

    sockaddr_in place{};
    int listener;
    int filler = -1;
    int first = -1;
    bool works = false;
};
