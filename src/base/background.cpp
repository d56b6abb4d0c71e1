#include "base/background.h"

#include <QCoreApplication>

void inMainThread(std::function<void()> call)
{
    if (QCoreApplication* application = QCoreApplication::instance()) {
        QMetaObject::invokeMethod(application, std::move(call), Qt::QueuedConnection);
    }
}
