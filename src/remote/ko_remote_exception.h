// The only way a transport reports failure. It is made on the heap, thrown as a pointer and
// caught as KORemoteException*; catchers read message() and never delete it, because the
// same pointer goes on as the argument of a signal. The objects are deliberately never freed.
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

// Throws a new KORemoteException* with this message.
[[noreturn]] void throwRemoteException(const QString& message);
