// The switches of the notches: which there are, and which of them are hidden. Main thread.
#pragma once

#include "curves/shown_result.h"

#include <QMap>
#include <QSet>

class QListWidget;

// Of the results that are shown: number and text, by rising number. Where results differ in the
// centre of a number, the number alone.
QMap<int, QString> notchesOf(const QVector<ShownResult>& results);

// All are hidden but one: the next after the only one that is shown, the first where several are.
QSet<int> allButNext(const QMap<int, QString>& notches, const QSet<int>& hidden);

// A row with a box for each, and its colour in the chart where it has one of its own there. Rows
// are changed only where they have to.
void listNotches(QListWidget& list, const QVector<ShownResult>& results, const QSet<int>& hidden,
                 bool hasColours);
QSet<int> hiddenNotches(const QListWidget& list);
