#include "remote/instrument_commands.h"

#include "remote/ko_remote_exception.h"

#include <QMutexLocker>

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

void InstrumentCommands::closeInterface()
{
    const QMutexLocker lock(&exchange);
    if (interface) {
        interface->close();
    }
}

void InstrumentCommands::openInterface()
{
    const QMutexLocker lock(&exchange);
    required(interface).open();
}

QString InstrumentCommands::identity()
{
    return query(QStringLiteral("*IDN?"));
}

void InstrumentCommands::goToLocal()
{
    const QMutexLocker lock(&exchange);
    required(interface).goToLocal();
}

QString InstrumentCommands::query(const QString& text)
{
    const QMutexLocker lock(&exchange);
    return interface ? interface->querySCPI(text) : QString();
}

void InstrumentCommands::reset()
{
    send(QStringLiteral("*RST"));
}

void InstrumentCommands::send(const QString& text)
{
    const QMutexLocker lock(&exchange);
    if (interface) {
        interface->sendSCPI(text);
    }
}
