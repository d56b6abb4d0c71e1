// Waiting for what comes to pass while this thread serves others.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QEventLoop>
#include <QTimer>

// Whether the condition held before the limit. Qt Test's own wait sleeps 10 ms after each round of
// events: a server in this thread would take seconds for what it sends in tenths of one.
template <class Condition> bool eventsBring(Condition condition, int limitMs)
{
    const QDeadlineTimer limit(limitMs);
    QTimer look; // for what comes without an event
    look.start(10);
    while (!condition()) {
        if (limit.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}
