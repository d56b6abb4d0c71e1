// The SCPI that every instrument understands, and the one door to an instrument's transport.
//
// Owns the transport. Any thread, by the one who holds the instrument's link; only breakOff() may
// come from another thread at any moment. Without a transport, openInterface() and goToLocal()
// throw KORemoteException*, and the others do nothing.
#pragma once

#include "remote/ko_remote_interface.h"

#include <memory>

class InstrumentCommands
{
public:
    explicit InstrumentCommands(std::unique_ptr<KORemoteInterface> transport);

    void closeInterface();
    void openInterface();
    QString identity(); // answer of "*IDN?"
    void goToLocal();
    // Whether the device closed the connection, or there is none. Asks nothing.
    bool hasHungUp();
    QString query(const QString& text);
    void reset();
    void send(const QString& text);

    // The present exchange ends soon, and every later one fails with KORemoteException*.
    void breakOff();

private:
    void requireUnbroken() const;

    const std::unique_ptr<KORemoteInterface> interface; // null for an unknown interface
};
