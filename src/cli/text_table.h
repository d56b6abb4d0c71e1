// Rows of texts in aligned columns for people to read.
#pragma once

#include "cli/console.h"

#include <QStringList>
#include <QVector>

enum class Align { Left, Right };

class TextTable
{
public:
    // A column for each alignment; headings may be empty for a table without them.
    TextTable(QVector<Align> alignments, const QStringList& headings = {});

    // A cell a column, printed in a colour.
    void addRow(const QStringList& cells, Colour colour = Colour::Plain);

    // Columns two blanks apart, no blanks at the ends of lines.
    QString text(const Console& console) const;

private:
    struct Row
    {
        QStringList cells;
        Colour colour;
    };
    QString lineOf(const QStringList& cells, const QVector<int>& widths) const;

    QVector<Align> columns;
    QVector<Row> rows;
};
