// The one connection to one device.
//
// How a link lives: an instrument makes it, never connected, and all copies of the instrument share
// it; it is never copied. Who talks to the device holds it for one whole conversation (a LinkTurn:
// an Init, a tuning, one pass of a measurement) and brings the settings as a value. Turns are given
// in the order of asking. A record that is replaced retires its links: the conversation in progress
// comes to its end, none that waits begins, and the window keeps the link, because the device's
// connection stays open until the program ends. The end of the program breaks every wait off.
//
// Any thread. What the device last said may be asked at any moment and never waits for traffic.
#pragma once

#include <QString>

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

class InstrumentCommands;
class InstrumentLink;

// The right to talk to a device, until it is given back or destroyed. An empty one stands for a
// link that nobody may talk over any more.
class LinkTurn
{
public:
    LinkTurn() = default;
    LinkTurn(LinkTurn&& other) noexcept = default;
    LinkTurn& operator=(LinkTurn&& other) noexcept;
    LinkTurn(const LinkTurn&) = delete;
    LinkTurn& operator=(const LinkTurn&) = delete;
    ~LinkTurn();

    explicit operator bool() const { return link != nullptr; }
    void giveBack();

private:
    friend class InstrumentLink;
    explicit LinkTurn(std::shared_ptr<InstrumentLink> taken) : link(std::move(taken)) {}

    std::shared_ptr<InstrumentLink> link;
};

class InstrumentLink : public std::enable_shared_from_this<InstrumentLink>
{
public:
    using Conversation = std::function<void()>;

    // Takes a place in the queue. granted is called exactly once, from whichever thread gives the
    // link back or from this one; with an empty turn when the link is retired before.
    void ask(std::function<void(LinkTurn)> granted);

    // The same, and waits for the turn.
    LinkTurn takeTurn();

    // Takes a place in the queue; when its turn has come, the conversation runs on a worker thread
    // and afterwards, on that thread, ended is called. Where there is no thread or no memory for
    // it, the device message says so and ended is called all the same. On a retired link nothing
    // is. Throws std::bad_alloc, and nothing is called, when there is no memory for the place.
    void converse(const Conversation& conversation, const Conversation& ended);
    // How many of these have not ended yet; those that a retired link refused have.
    int pendingConversations() const { return pending; }

    void retire();
    bool isRetired() const;
    // Retires the link, ends the waits of the conversation in progress and allows no exchange after
    // them. A call into a VISA library can't be woken and runs out.
    void breakOff();

    // Whether there is a connection or somebody who talks.
    bool isInUse() const;

    // What a connection is and what the device said. The first three ask; the others are for the
    // one who holds the link.
    std::shared_ptr<InstrumentCommands> remote() const; // null before the first connection
    QString deviceMessage() const;
    bool initialized() const;
    void setRemote(const std::shared_ptr<InstrumentCommands>& commands);
    void setDeviceMessage(const QString& message);
    void setInitialized();
    void fail(const QString& message); // deviceMessage := message, initialized := false

private:
    friend class LinkTurn;
    using Grant = std::function<void(LinkTurn)>;

    void passOn();

    mutable std::mutex mutex; // held for a look, never for traffic
    std::deque<Grant> waiting;
    bool taken = false;
    bool retired = false;
    bool brokenOff = false;
    std::atomic<int> pending{0};
    std::shared_ptr<InstrumentCommands> commands;
    QString message;
    bool connected = false;
};

// Runs a part of a conversation. A failure of the transport, or of the system, ends in the device
// message.
void failQuietly(InstrumentLink& link, const InstrumentLink::Conversation& conversation);
