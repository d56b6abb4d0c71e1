#include "setup/notch_list.h"

#include <QBrush>
#include <QColor>
#include <QStandardItem>
#include <QStandardItemModel>
#include <QVector>

#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

namespace {

constexpr int columnCount = 7;

// What the texts of a row are made of.
struct RowNumbers
{
    explicit RowNumbers(const Notch& notch = {})
        : frequencies{notch.center, notch.width, notch.startFreq, notch.stopFreq},
          depth(notch.depth),
          bins{notch.startIndex, notch.stopIndex}
    {
    }

    double frequencies[4];
    double depth;
    qint32 bins[2];
};

QVector<RowNumbers> numbersOf(const QList<Notch>& rows, double centerFrequency)
{
    QVector<RowNumbers> numbers;
    numbers.reserve(rows.size() + 1);
    for (const Notch& notch : rows) {
        numbers.append(RowNumbers(notch));
    }
    Notch carrier;
    carrier.center = centerFrequency;
    numbers.append(RowNumbers(carrier));
    return numbers;
}

// Bit by bit, so that a number that is none equals itself.
bool areSame(const QVector<RowNumbers>& one, const QVector<RowNumbers>& other)
{
    return one.size() == other.size() &&
           std::memcmp(one.constData(), other.constData(),
                       std::size_t(one.size()) * sizeof(RowNumbers)) == 0;
}

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

bool showsRow(const QStandardItemModel& model, int row, const RowTexts& texts)
{
    for (int column = 0; column < columnCount; ++column) {
        const QStandardItem* item = model.item(row, column);
        if (item == nullptr || item->text() != texts[std::size_t(column)]) {
            return false;
        }
    }
    return true;
}

bool shows(const QStandardItemModel& model, const QList<Notch>& rows, double centerFrequency)
{
    if (model.rowCount() != rows.size() || model.columnCount() != columnCount) {
        return false;
    }
    for (int row = 0; row < rows.size(); ++row) {
        if (!showsRow(model, row, textsOf(rows.at(row), centerFrequency))) {
            return false;
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

void rebuild(QStandardItemModel& model, const QList<Notch>& rows, double centerFrequency)
{
    model.clear();
    setHeader(model);
    for (int row = 0; row < rows.size(); ++row) {
        model.insertRow(row, tableRow(textsOf(rows.at(row), centerFrequency), row % 2 == 1));
    }
}

} // namespace

// The model, and what it is known to show, so that a refresh that changes nothing costs little.
struct NotchTable
{
    NotchTable() : model(0, columnCount)
    {
        QObject::connect(&model, &QStandardItemModel::itemChanged, &model,
                         [this] { isTypedIn = true; });
    }

    QStandardItemModel model;
    QVector<RowNumbers> shown;
    bool isTypedIn = true; // it may show something else
};

NotchList::NotchList() : table(std::make_shared<NotchTable>()) {}

NotchList::NotchList(QList<Notch> rows) : items(std::move(rows)) {}

NotchList NotchList::rowsOnly() const
{
    return NotchList(items);
}

QStandardItemModel* NotchList::model() const
{
    return table ? &table->model : nullptr;
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
    QVector<RowNumbers> numbers = numbersOf(items, centerFrequency);
    const bool isKnown = !table->isTypedIn && areSame(numbers, table->shown);
    // A cell that is being edited would lose its editor with a rebuild that changes nothing.
    const bool isRebuilt = !isKnown && !shows(table->model, items, centerFrequency);
    if (isRebuilt) {
        rebuild(table->model, items, centerFrequency);
    }
    setHeader(table->model);
    table->shown = std::move(numbers);
    table->isTypedIn = false;
    return isRebuilt;
}
