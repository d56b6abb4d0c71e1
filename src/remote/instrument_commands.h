// The SCPI that every instrument understands, and the one door to an instrument's transport.
//
// Owns the transport. A command object may be used from any thread; one exchange with the
// instrument runs at a time, so a second thread waits for the first one's exchange.
#pragma once

#include "remote/ko_remote_interface.h"

#include <QMutex>

#include <memory>

class InstrumentCommands
{
public:
    explicit InstrumentCommands(std::unique_ptr<KORemoteInterface> transport);

    void closeInterface();
    void openInterface(); // without a transport: KORemoteException*
    QString identity();   // answer of "*IDN?"
    void goToLocal();     // without a transport: KORemoteException*
    QString query(const QString& text);
    void reset();
    void send(const QString& text);

private:
    const std::unique_ptr<KORemoteInterface> interface; // null for an unknown interface
    // A line can't be handed over by value: two threads on it would tear the device apart.
    QMutex exchange;
};
