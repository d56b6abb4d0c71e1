#include "curves/notch_switches.h"

#include "chart/chart_texts.h"
#include "curves/plot_content.h"
#include "curves/swatch.h"

#include <QListWidget>

// A text is only made where a centre is new: there are thousands of points.
QMap<int, QString> notchesOf(const QVector<ShownResult>& results)
{
    struct Seen
    {
        double center;
        QString text;
    };
    QMap<int, Seen> notches;
    for (const ShownResult& shown : results) {
        for (const NprPoint& point : shown.isShown ? shown.result.points : QVector<NprPoint>()) {
            const auto found = notches.find(point.notch);
            if (found != notches.end() && found->center == point.center) {
                continue;
            }
            const QString text = notchText(point.notch, point.center);
            const bool isAlike = found == notches.end() || found->text == text;
            notches[point.notch] = {point.center,
                                    isAlike ? text : QStringLiteral("notch %1").arg(point.notch)};
        }
    }
    QMap<int, QString> texts;
    for (auto notch = notches.begin(); notch != notches.end(); ++notch) {
        texts[notch.key()] = notch->text;
    }
    return texts;
}

QSet<int> allButNext(const QMap<int, QString>& notches, const QSet<int>& hidden)
{
    const QList<int> numbers = notches.keys();
    QSet<int> wanted(numbers.begin(), numbers.end());
    if (numbers.isEmpty()) {
        return wanted;
    }
    const QList<int> shown = (wanted - hidden).values();
    const int next = shown.size() == 1 ? numbers.indexOf(shown.constFirst()) + 1 : 0;
    wanted.remove(numbers.at(next % numbers.size()));
    return wanted;
}

void listNotches(QListWidget& list, const QVector<ShownResult>& results, const QSet<int>& hidden,
                 bool hasColours)
{
    const QMap<int, QString> notches = notchesOf(results);
    while (list.count() > notches.size()) {
        delete list.takeItem(list.count() - 1);
    }
    while (list.count() < notches.size()) {
        list.addItem(QString());
    }
    int row = 0;
    for (auto notch = notches.begin(); notch != notches.end(); ++notch) {
        QListWidgetItem* item = list.item(row++);
        item->setText(notch.value());
        item->setData(Qt::UserRole, notch.key());
        item->setIcon(hasColours ? swatch(notchColour(notch.key())) : QIcon());
        item->setCheckState(hidden.contains(notch.key()) ? Qt::Unchecked : Qt::Checked);
    }
}

QSet<int> hiddenNotches(const QListWidget& list)
{
    QSet<int> hidden;
    for (int row = 0; row < list.count(); ++row) {
        if (list.item(row)->checkState() == Qt::Unchecked) {
            hidden.insert(list.item(row)->data(Qt::UserRole).toInt());
        }
    }
    return hidden;
}
