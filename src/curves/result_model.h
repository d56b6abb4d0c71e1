// The results of the window as the rows of a table: each with a box that says whether the chart
// shows it. Main thread.
#pragma once

#include "curves/shown_result.h"

#include <QAbstractTableModel>
#include <QColor>

class ResultModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, Peak, Range, Verdict, Device, Notches, Date, columnTotal };

    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    const QVector<ShownResult>& results() const { return rows; }
    const ShownResult* find(int id) const; // null for none
    int rowOf(int id) const;               // -1 for none

    // Gives the new row an id, which it returns. A result of the same file takes its place.
    int add(ShownResult result);
    // By its id; one that isn't there is passed over.
    void change(const ShownResult& result);
    void remove(int id);
    void removeAll();

private:
    QString text(const ShownResult& row, int column) const;

    QVector<ShownResult> rows;
    int lastId = 0;
};
