#include "remote/ko_remote_exception.h"

#include <memory>

KORemoteException::KORemoteException(const QString& message) : text(message) {}

void KORemoteException::raise() const
{
    throw *this;
}

KORemoteException* KORemoteException::clone() const
{
    return new KORemoteException(*this);
}

QString takeMessage(KORemoteException* failure)
{
    return std::unique_ptr<KORemoteException>(failure)->message();
}

void throwRemoteException(const QString& message)
{
    // Catchers take the pointer, as told in the header.
    throw new KORemoteException(message); // NOLINT(misc-throw-by-value-catch-by-reference)
}
