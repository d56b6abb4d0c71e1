#include "instruments/instrument_link.h"

#include "base/worker_threads.h"
#include "remote/instrument_commands.h"
#include "remote/ko_remote_exception.h"

#include <condition_variable>
#include <exception>
#include <new>
#include <utility>

LinkTurn& LinkTurn::operator=(LinkTurn&& other) noexcept
{
    if (this != &other) {
        giveBack();
        link = std::move(other.link);
    }
    return *this;
}

LinkTurn::~LinkTurn()
{
    giveBack();
}

void LinkTurn::giveBack()
{
    if (const std::shared_ptr<InstrumentLink> held = std::exchange(link, nullptr)) {
        held->passOn();
    }
}

void InstrumentLink::ask(Grant granted)
{
    LinkTurn turn;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!retired && taken) {
            waiting.push_back(std::move(granted));
            return;
        }
        if (!retired) {
            taken = true;
            turn = LinkTurn(shared_from_this());
        }
    }
    granted(std::move(turn));
}

void InstrumentLink::passOn()
{
    Grant next;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (waiting.empty()) {
            taken = false;
            return;
        }
        next = std::move(waiting.front());
        waiting.pop_front();
    }
    next(LinkTurn(shared_from_this()));
}

LinkTurn InstrumentLink::takeTurn()
{
    std::mutex arrival;
    std::condition_variable arrived;
    bool here = false;
    LinkTurn turn;
    ask([&](LinkTurn given) {
        const std::lock_guard<std::mutex> lock(arrival);
        turn = std::move(given);
        here = true;
        arrived.notify_one();
    });
    std::unique_lock<std::mutex> lock(arrival);
    arrived.wait(lock, [&here] { return here; });
    return turn;
}

// All that the conversation needs is made here: when its turn comes there may be no memory.
void InstrumentLink::converse(const Conversation& conversation, const Conversation& ended)
{
    const auto turn = std::make_shared<LinkTurn>(); // keeps the link alive
    const Conversation talk = [this, conversation, ended, turn] {
        failQuietly(*this, conversation);
        --pending;
        ended();
        turn->giveBack();
    };
    const Grant begin = [this, talk, ended, turn](LinkTurn given) {
        *turn = std::move(given);
        if (!*turn) {
            --pending; // it never begins
        } else if (!WorkerThreads::ofProcess().start(talk)) {
            fail(QStringLiteral("No thread for the instrument"));
            --pending;
            ended();
            turn->giveBack();
        }
    };
    ++pending;
    try {
        ask(begin);
    } catch (const std::bad_alloc&) { // no place in the queue
        --pending;
        throw;
    }
}

void InstrumentLink::retire()
{
    std::deque<Grant> refused;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        retired = true;
        refused.swap(waiting);
    }
    for (const Grant& grant : refused) {
        grant(LinkTurn());
    }
}

void InstrumentLink::breakOff()
{
    retire();
    const std::lock_guard<std::mutex> lock(mutex);
    brokenOff = true;
    if (commands) {
        commands->breakOff();
    }
}

bool InstrumentLink::isRetired() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return retired;
}

bool InstrumentLink::isInUse() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return taken || commands != nullptr;
}

std::shared_ptr<InstrumentCommands> InstrumentLink::remote() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return commands;
}

QString InstrumentLink::deviceMessage() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return message;
}

bool InstrumentLink::initialized() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return connected;
}

void InstrumentLink::setRemote(const std::shared_ptr<InstrumentCommands>& newCommands)
{
    std::shared_ptr<InstrumentCommands> former = newCommands; // freed when the mutex is
    const std::lock_guard<std::mutex> lock(mutex);
    commands.swap(former);
    if (commands && brokenOff) {
        commands->breakOff();
    }
}

void InstrumentLink::setDeviceMessage(const QString& answer)
{
    const std::lock_guard<std::mutex> lock(mutex);
    message = answer;
}

void InstrumentLink::setInitialized()
{
    const std::lock_guard<std::mutex> lock(mutex);
    connected = true;
}

void InstrumentLink::fail(const QString& failure)
{
    const std::lock_guard<std::mutex> lock(mutex);
    message = failure;
    connected = false;
}

void failQuietly(InstrumentLink& link, const InstrumentLink::Conversation& conversation)
{
    try {
        conversation();
    } catch (KORemoteException* failure) {
        link.fail(takeMessage(failure));
    } catch (const std::exception&) {
        link.fail(QStringLiteral("Not enough memory"));
    }
}
