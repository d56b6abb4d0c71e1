// The only way a transport reports failure. It is made on the heap, thrown as a pointer and
// caught as KORemoteException*, because the same pointer goes on as the argument of a signal.
// Whoever handles it last frees it: takeMessage() at the end of its way, or the sender of the
// signal when all receivers have returned.
#pragma once

#include <QException>
#include <QString>

class KORemoteException : public QException
{
public:
    explicit KORemoteException(const QString& message);

    const QString& message() const { return text; }

    void raise() const override;
    KORemoteException* clone() const override;

private:
    QString text;
};

// The message of a failure that has reached the end of its way; frees it.
QString takeMessage(KORemoteException* failure);

// Throws a new KORemoteException* with this message.
[[noreturn]] void throwRemoteException(const QString& message);
