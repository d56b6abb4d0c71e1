#include "cli/text_table.h"

#include <algorithm>
#include <utility>

TextTable::TextTable(QVector<Align> alignments, const QStringList& headings)
    : columns(std::move(alignments))
{
    if (!headings.isEmpty()) {
        addRow(headings, Colour::Bold);
    }
}

void TextTable::addRow(const QStringList& cells, Colour colour)
{
    rows.append({cells, colour});
}

QString TextTable::text(const Console& console) const
{
    QVector<int> widths(columns.size(), 0);
    for (const Row& row : rows) {
        for (int i = 0; i < columns.size(); ++i) {
            widths[i] = std::max(widths.at(i), row.cells.value(i).size());
        }
    }
    QString all;
    for (const Row& row : rows) {
        all += console.painted(lineOf(row.cells, widths), row.colour) + '\n';
    }
    return all;
}

QString TextTable::lineOf(const QStringList& cells, const QVector<int>& widths) const
{
    QString line;
    for (int i = 0; i < columns.size(); ++i) {
        const QString cell = cells.value(i);
        line += (i > 0 ? "  " : "") + (columns.at(i) == Align::Left
                                           ? cell.leftJustified(widths.at(i))
                                           : cell.rightJustified(widths.at(i)));
    }
    while (line.endsWith(' ')) {
        line.chop(1);
    }
    return line;
}
