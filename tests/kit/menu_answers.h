// Answers the context menus that open during its life, one after the other: Qt::Key_Return chooses
// the first entry, Qt::Key_Escape cancels. Menus beyond the answers are cancelled.
#pragma once

#include <QApplication>
#include <QMenu>
#include <QTimer>
#include <QtTest>

class MenuAnswers
{
public:
    explicit MenuAnswers(const QList<Qt::Key>& wantedAnswers) : answers(wantedAnswers)
    {
        QObject::connect(&hand, &QTimer::timeout, &hand, [this] { answer(); });
        hand.start(0);
    }

    // Texts of the first entries of the menus so far.
    QStringList entries;

private:
    void answer()
    {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu == nullptr) {
            return;
        }
        const Qt::Key key = answers.value(entries.size(), Qt::Key_Escape);
        entries << menu->actions().constFirst()->text();
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, key);
    }

    QList<Qt::Key> answers;
    QTimer hand;
};
