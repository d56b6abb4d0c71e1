#include "setup/notch_list.h"

#include <QBrush>
#include <QColor>
#include <QStandardItem>
#include <QStandardItemModel>
#include <QVector>

#include <array>
#include <cstddef>
#include <utility>

namespace {

constexpr int columnCount = 7;

QString megahertz(double hertz)
{
    return QString::number(hertz / 1e6, 'f', 6);
}

using RowTexts = std::array<QString, columnCount>;

RowTexts textsOf(const Notch& notch, double centerFrequency)
{
    return {
        megahertz(centerFrequency + notch.center),
        megahertz(notch.width),
        megahertz(centerFrequency + notch.startFreq),
        megahertz(centerFrequency + notch.stopFreq),
        QString::number(notch.startIndex),
        QString::number(notch.stopIndex),
        QString::number(notch.depth, 'f', 2),
    };
}

QList<QStandardItem*> tableRow(const RowTexts& texts, bool shaded)
{
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

bool shows(const QStandardItemModel& model, const QVector<RowTexts>& rows)
{
    if (model.rowCount() != rows.size() || model.columnCount() != columnCount) {
        return false;
    }
    for (int row = 0; row < rows.size(); ++row) {
        for (int column = 0; column < columnCount; ++column) {
            const QStandardItem* item = model.item(row, column);
            if (item == nullptr || item->text() != rows.at(row)[std::size_t(column)]) {
                return false;
            }
        }
    }
    return true;
}

void setHeader(QStandardItemModel& model)
{
    model.setHorizontalHeaderLabels({QStringLiteral("Center/MHz"), QStringLiteral("Width/MHz"),
                                     QStringLiteral("Start Freq/MHz"),
                                     QStringLiteral("Stop Freq/MHz"), QStringLiteral("Start Index"),
                                     QStringLiteral("Stop Index"), QStringLiteral("Depth/dB")});
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

bool NotchList::fillTable(double centerFrequency)
{
    QVector<RowTexts> rows;
    rows.reserve(items.size());
    for (const Notch& notch : qAsConst(items)) {
        rows.append(textsOf(notch, centerFrequency));
    }
    // A cell that is being edited would lose its editor with a rebuild that changes nothing.
    if (shows(*tableModel, rows)) {
        setHeader(*tableModel);
        return false;
    }
    tableModel->clear();
    setHeader(*tableModel);
    for (int row = 0; row < rows.size(); ++row) {
        tableModel->insertRow(row, tableRow(rows.at(row), row % 2 == 1));
    }
    return true;
}
