// An event filter of the application: the wheel turns a number field or a combo box only while it
// has the focus. Over any other one it scrolls what lies around it, and doesn't take the focus
// either, so nothing changes by accident.
#pragma once

#include <QObject>

class FocusedWheel : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject* receiver, QEvent* event) override;
};
