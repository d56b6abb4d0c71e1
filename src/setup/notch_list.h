// The notches of a setup in table order, with the item model that the table view shows.
//
// Copying shares the rows (a write detaches them) and the model. A copy for another thread
// is made by rowsOnly(), because a model belongs to the main thread.
#pragma once

#include "setup/notch.h"

#include <QList>

#include <memory>

class QStandardItemModel;
struct NotchTable;

class NotchList
{
public:
    // An empty list with an empty model of seven columns.
    NotchList();

    // The same rows with no model. Any thread may own the result.
    NotchList rowsOnly() const;

    // Null after rowsOnly().
    QStandardItemModel* model() const;

    // A position at or beyond the end appends, one at or below 0 prepends.
    void insert(qint32 position, const Notch& notch);

    // Drops all rows. The model keeps what it shows until the next fillTable.
    void clear();

    // Makes the model show the rows, whatever it showed before; false when it did already and no
    // cell was touched. centerFrequency is the carrier in Hz: the table shows absolute
    // frequencies in MHz. Main thread only.
    bool fillTable(double centerFrequency);

    // Sorts the rows by center, ascending; rows of equal center stay unordered.
    void sort();

    QList<Notch> items;

private:
    explicit NotchList(QList<Notch> rows);

    std::shared_ptr<NotchTable> table;
};
