// The transports that go through a VISA library. Every command is turned into a query, so
// that it returns only when the instrument has finished.
//
// Deliberate: neither the destructor nor a second open() closes the session, only close() does.
// Other users of the same library may have put their own session behind its number meanwhile.
#pragma once

#include "remote/ko_remote_interface.h"
#include "remote/visa_function_table.h"

class KOVISAInterface : public KORemoteInterface
{
public:
    // Loads the library; throws KORemoteException* "Could not load VISA" without one.
    KOVISAInterface();

    void sendSCPI(const QString& command) override;
    // The answer as it came, its line end included. A refused query names the
    // instrument's own error where "SYST:ERR?" is still answered.
    QString querySCPI(const QString& command) override;
    void open() override;
    // Leaves the resource manager's session open unless the instrument's own session
    // cannot be closed.
    void close() override;
    void goToLocal() override;

    virtual QString resourceString() const = 0; // VISA resource descriptor

protected:
    VisaFunctionTable visa;
    ViSession session = 0; // 0 until opened
};
