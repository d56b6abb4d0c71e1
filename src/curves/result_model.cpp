#include "curves/result_model.h"

#include "curves/plot_content.h"
#include "curves/result_texts.h"
#include "curves/swatch.h"

#include "chart/chart_style.h"

#include <algorithm>

int ResultModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : rows.size();
}

int ResultModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columnTotal;
}

QString ResultModel::text(const ShownResult& row, int column) const
{
    switch (column) {
    case Name:
        return row.state == ShownResult::State::InFile    ? row.name
               : row.state == ShownResult::State::Running ? row.name + " (running)"
                                                          : row.name + " (not saved)";
    case Device:
        return deviceText(row.result);
    case Date:
        return dateText(row.result);
    case Notches:
        return notchCountText(row.result);
    case Peak:
        return peakText(row.result);
    case Range:
        return rangeText(row.result);
    default:
        return verdictText(row.result);
    }
}

QVariant ResultModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rows.size()) {
        return {};
    }
    const ShownResult& row = rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return text(row, index.column());
    case Qt::ToolTipRole:
        return row.path.isEmpty() ? text(row, Name) + '\n' + text(row, Device)
                                  : row.path + '\n' + text(row, Device);
    case Qt::CheckStateRole:
        return index.column() == Name ? QVariant(row.isShown ? Qt::Checked : Qt::Unchecked)
                                      : QVariant();
    case Qt::DecorationRole: // with several results each has a colour in the chart
        return index.column() == Name && rows.size() > 1
                   ? QVariant(swatch(resultColour(index.row())))
                   : QVariant();
    case Qt::ForegroundRole:
        return index.column() == Verdict && text(row, Verdict) == "FAIL"
                   ? QVariant(ChartStyle::limitColour())
                   : QVariant();
    default:
        return {};
    }
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList titles = {"Result", "Peak",    "Range", "Limit",
                                       "Device", "Notches", "Date"};
    return orientation == Qt::Horizontal && role == Qt::DisplayRole ? titles.value(section)
                                                                    : QVariant();
}

Qt::ItemFlags ResultModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags usual = QAbstractTableModel::flags(index);
    return index.column() == Name ? usual | Qt::ItemIsUserCheckable : usual;
}

bool ResultModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole || index.column() != Name || index.row() >= rows.size()) {
        return false;
    }
    rows[index.row()].isShown = value.toInt() == Qt::Checked;
    emit dataChanged(index, index);
    return true;
}

const ShownResult* ResultModel::find(int id) const
{
    const int row = rowOf(id);
    return row < 0 ? nullptr : &rows.at(row);
}

int ResultModel::rowOf(int id) const
{
    const auto* const found = std::find_if(rows.begin(), rows.end(),
                                           [id](const ShownResult& row) { return row.id == id; });
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

int ResultModel::add(ShownResult result)
{
    for (const ShownResult& row : qAsConst(rows)) {
        if (!result.path.isEmpty() && row.path == result.path) {
            result.id = row.id;
            change(result);
            return result.id;
        }
    }
    result.id = ++lastId;
    beginInsertRows({}, rows.size(), rows.size());
    rows << result;
    endInsertRows();
    return result.id;
}

void ResultModel::change(const ShownResult& result)
{
    const int row = rowOf(result.id);
    if (row >= 0) {
        rows[row] = result;
        emit dataChanged(index(row, 0), index(row, columnTotal - 1));
    }
}

void ResultModel::remove(int id)
{
    const int row = rowOf(id);
    if (row >= 0) {
        beginRemoveRows({}, row, row);
        rows.remove(row);
        endRemoveRows();
    }
}

void ResultModel::removeAll()
{
    beginResetModel();
    rows.clear();
    endResetModel();
}
