#include "remote/instrument_commands.h"

#include "remote/ko_remote_exception.h"

namespace {

KORemoteInterface& required(const std::unique_ptr<KORemoteInterface>& transport)
{
    if (!transport) {
        throwRemoteException(QStringLiteral("No valid interface selected"));
    }
    return *transport;
}

} // namespace

InstrumentCommands::InstrumentCommands(std::unique_ptr<KORemoteInterface> transport)
    : interface(std::move(transport))
{
}

void InstrumentCommands::breakOff()
{
    if (interface) {
        interface->breakOff();
    }
}

void InstrumentCommands::requireUnbroken() const
{
    if (interface && interface->isBrokenOff()) {
        throwRemoteException(QStringLiteral("The program ends"));
    }
}

void InstrumentCommands::closeInterface()
{
    if (interface) {
        interface->close();
    }
}

void InstrumentCommands::openInterface()
{
    requireUnbroken();
    required(interface).open();
}

QString InstrumentCommands::identity()
{
    return query(QStringLiteral("*IDN?"));
}

bool InstrumentCommands::hasHungUp()
{
    return !interface || interface->hasHungUp();
}

void InstrumentCommands::goToLocal()
{
    requireUnbroken();
    required(interface).goToLocal();
}

QString InstrumentCommands::query(const QString& text)
{
    requireUnbroken();
    return interface ? interface->querySCPI(text) : QString();
}

void InstrumentCommands::reset()
{
    send(QStringLiteral("*RST"));
}

void InstrumentCommands::send(const QString& text)
{
    requireUnbroken();
    if (interface) {
        interface->sendSCPI(text);
    }
}
