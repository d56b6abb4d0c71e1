#include "base/background.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include <utility>

namespace {

class Call : public QEvent
{
public:
    Call(QObject* itsAsker, std::function<void()> itsCall)
        : QEvent(User), asker(itsAsker), call(std::move(itsCall))
    {
    }

    void make() const
    {
        if (asker) {
            call();
        }
    }

private:
    QPointer<QObject> asker;
    std::function<void()> call;
};

// Belongs to the application and gets nothing but calls.
class MainThread : public QObject
{
public:
    using QObject::QObject;

    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User) {
            return QObject::event(event);
        }
        static_cast<const Call*>(event)->make();
        return true;
    }
};

QObject* mainThread()
{
    static QPointer<MainThread> present;
    if (present.isNull() && QCoreApplication::instance() != nullptr) {
        present = new MainThread(QCoreApplication::instance());
    }
    return present;
}

} // namespace

CallHome::CallHome(QObject* asker, std::function<void()> call)
    : home(mainThread()), event(std::make_unique<Call>(asker, std::move(call)))
{
}

CallHome::~CallHome() = default;

void CallHome::send()
{
    if (home != nullptr && QCoreApplication::instance() != nullptr) {
        QCoreApplication::postEvent(home, event.release());
    }
}
