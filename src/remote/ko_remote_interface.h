// One way to reach one instrument: moves SCPI text there and gives back the text that the
// instrument answers. Nothing above this layer knows which transport is in use.
//
// All operations block, within fixed time limits, and throw KORemoteException*. A transport
// may be used from any thread, by one thread at a time (see instruments/instrument_link.h); only
// breakOff() may come from another one at any moment.
#pragma once

#include "remote/patience.h"

#include <QString>

class KORemoteInterface
{
public:
    virtual ~KORemoteInterface() = default;

    virtual void sendSCPI(const QString& command) = 0;
    virtual QString querySCPI(const QString& command) = 0; // the answer to the command
    virtual void open() = 0;
    virtual void close() = 0;
    virtual void goToLocal() = 0; // hands the front panel back to the operator
    // Whether the device closed the connection, as far as the transport can tell. Doesn't block.
    virtual bool hasHungUp() { return false; }

    // Ends every wait, the present one too, as if its time limit had passed. For good.
    void breakOff() { patience.end(); }
    bool isBrokenOff() const { return patience.hasEnded(); }

    KORemoteInterface(const KORemoteInterface&) = delete;
    KORemoteInterface& operator=(const KORemoteInterface&) = delete;

protected:
    KORemoteInterface() = default;

    Patience patience;
};
