// The application, which goes on when an event could not be handled for want of memory: what the
// event would have done stays undone, and the operator tries again when there is memory.
#pragma once

#include <QApplication>
#include <QDebug>

#include <new>

class SteadyApplication : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        try {
            return QApplication::notify(receiver, event);
        } catch (const std::bad_alloc&) {
            qWarning("Not enough memory");
            return false;
        }
    }
};
