#include "setup/notch_list.h"

#include <QBrush>
#include <QColor>
#include <QStandardItem>
#include <QStandardItemModel>

#include <utility>

namespace {

constexpr int columnCount = 7;

QString megahertz(double hertz)
{
    return QString::number(hertz / 1e6, 'f', 6);
}

QList<QStandardItem*> tableRow(const Notch& notch, double centerFrequency, bool shaded)
{
    const QString texts[columnCount] = {
        megahertz(centerFrequency + notch.center),
        megahertz(notch.width),
        megahertz(centerFrequency + notch.startFreq),
        megahertz(centerFrequency + notch.stopFreq),
        QString::number(notch.startIndex),
        QString::number(notch.stopIndex),
        QString::number(notch.depth, 'f', 2),
    };
    QList<QStandardItem*> row;
    for (const QString& text : texts) {
        auto* item = new QStandardItem(text);
        item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        if (shaded) {
            item->setBackground(QColor(239, 240, 241));
        }
        row.append(item);
    }
    return row;
}

} // namespace

NotchList::NotchList() : tableModel(std::make_shared<QStandardItemModel>(0, columnCount)) {}

NotchList::NotchList(QList<Notch> rows) : items(std::move(rows)) {}

NotchList NotchList::rowsOnly() const
{
    return NotchList(items);
}

void NotchList::insert(qint32 position, const Notch& notch)
{
    items.insert(qBound(0, position, items.size()), notch);
}

void NotchList::clear()
{
    items.clear();
}

void NotchList::fillTable(double centerFrequency)
{
    tableModel->clear();
    tableModel->setHorizontalHeaderLabels(
        {QStringLiteral("Center/MHz"), QStringLiteral("Width/MHz"),
         QStringLiteral("Start Freq/MHz"), QStringLiteral("Stop Freq/MHz"),
         QStringLiteral("Start Index"), QStringLiteral("Stop Index"), QStringLiteral("Depth/dB")});
    for (int row = 0; row < items.size(); ++row) {
        tableModel->insertRow(row, tableRow(items.at(row), centerFrequency, row % 2 == 1));
    }
}
