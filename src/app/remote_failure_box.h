// The way of a failed measurement or preset to the window's box.
#pragma once

#include "app/main_window.h"

#include <QThread>

// Deliberate: a failure that comes from another thread is dropped with this warning, so that a
// device that fails again and again in "Cont" does not flood the screen with boxes. On the main
// thread it arrives. The failure's type stays out of the meta type system for the same reason;
// as Qt queues unregistered pointers all the same, the connection is direct and looks at the
// thread itself.
template <class Sender>
void connectRemoteFailure(const Sender* sender, void (Sender::*signal)(KORemoteException*),
                          MainWindow* window)
{
    const QThread* mainThread = window->thread();
    QObject::connect(
        sender, signal, window,
        [window, mainThread](KORemoteException* failure) {
            if (QThread::currentThread() == mainThread) {
                window->remoteErrorCalled(failure);
            } else {
                qWarning("QObject::connect: Cannot queue arguments of type 'KORemoteException*'");
            }
        },
        Qt::DirectConnection);
}
