// The message boxes that come up during its life. Each is dismissed at once.
#pragma once

#include <QApplication>
#include <QEvent>
#include <QMessageBox>
#include <QStringList>
#include <QTimer>

class MessageBoxes : public QObject
{
public:
    MessageBoxes() { qApp->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* box = qobject_cast<QMessageBox*>(watched);
        if (box != nullptr && event->type() == QEvent::Show) {
            texts.append(box->text());
            QTimer::singleShot(0, box, &QDialog::reject);
        }
        return false;
    }

    QStringList texts;
};
