#include "look/focused_wheel.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>

namespace {

QWidget* inputFrom(QObject* receiver)
{
    const bool isInput = qobject_cast<QAbstractSpinBox*>(receiver) != nullptr ||
                         qobject_cast<QComboBox*>(receiver) != nullptr;
    return isInput ? static_cast<QWidget*>(receiver) : nullptr;
}

// Qt gives the focus before it delivers the wheel, so the policy has to keep it away.
void letTheWheelGiveNoFocus(QWidget& input)
{
    if (input.focusPolicy() == Qt::WheelFocus) {
        input.setFocusPolicy(Qt::StrongFocus);
    }
}

} // namespace

bool FocusedWheel::eventFilter(QObject* receiver, QEvent* event)
{
    if (event->type() != QEvent::Polish && event->type() != QEvent::Wheel) {
        return false;
    }
    QWidget* input = inputFrom(receiver);
    if (input == nullptr) {
        return false;
    }
    if (event->type() == QEvent::Polish) {
        letTheWheelGiveNoFocus(*input);
        return false;
    }
    if (input->hasFocus()) {
        return false;
    }
    event->ignore(); // on to the parent
    return true;
}
