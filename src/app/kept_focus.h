// Keeps the keyboard's place at a button that is disabled for a while: Qt passes the focus on to
// the next widget, and gets it back from there as soon as the button is enabled, unless the
// operator has moved on meanwhile.
#pragma once

#include <QPointer>
#include <QWidget>

class KeptFocus
{
public:
    void setEnabled(QWidget& button, bool enabled)
    {
        const bool lost = !enabled && button.hasFocus();
        button.setEnabled(enabled);
        if (lost) {
            standIn = button.window()->focusWidget();
        } else if (enabled && standIn != nullptr) {
            if (standIn == button.window()->focusWidget()) {
                button.setFocus(Qt::OtherFocusReason);
            }
            standIn.clear();
        }
    }

private:
    QPointer<QWidget> standIn; // holds the focus meanwhile
};
