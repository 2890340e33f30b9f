#include "stats/StatTableModel.h"

#include "lang/Language.h"

#include <algorithm>

namespace korvalin {

StatTableModel::StatTableModel(std::vector<StatColumn> columns, Language& language, const Locale& locale,
                               QObject* parent)
    : QAbstractTableModel(parent), columns_(std::move(columns)), language_(language), locale_(locale) {}

void StatTableModel::SetRows(std::vector<StatRecord>& records, std::vector<std::uint32_t> rows) {
    beginResetModel();
    records_ = &records;
    rows_ = Sorted(order_, std::move(rows), {});
    NumberRows();
    endResetModel();
}

void StatTableModel::SetUnit(const VolumeUnit& unit) {
    unit_ = unit;
    if (rowCount() > 0) emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

std::string StatTableModel::Text(int row, int column) const {
    return CellText(Record(row), columns_.at(static_cast<std::size_t>(column)).Shows, unit_, locale_);
}

std::string StatTableModel::ShownText(int row, int column) const {
    const bool isNote = columns_.at(static_cast<std::size_t>(column)).Shows == StatColumn::Field::Info;
    if (isNote && IsRunning(Record(row))) return language_.Lng("frmStatistik", 60);
    return Text(row, column);
}

void StatTableModel::Refresh(const StatRecord& record) {
    const int row = record.ListRow - 1;
    if (row >= 0) emit dataChanged(index(row, 0), index(row, columnCount() - 1));
}

std::string StatTableModel::Header(int column) const {
    return language_.Lng("frmStatistik", columns_.at(static_cast<std::size_t>(column)).HeaderText);
}

int StatTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int StatTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant StatTableModel::Alignment(int column) const {
    const bool figure = IsFigure(columns_.at(static_cast<std::size_t>(column)).Shows);
    return QVariant::fromValue((figure ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

QVariant StatTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    if (role == Qt::DisplayRole) return QString::fromStdString(ShownText(index.row(), index.column()));
    if (role == Qt::TextAlignmentRole) return Alignment(index.column());
    return {};
}

QVariant StatTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::DisplayRole) return QString::fromStdString(Header(section));
    if (role == Qt::TextAlignmentRole) return Alignment(section);
    return {};
}

std::vector<std::uint32_t> StatTableModel::Sorted(const Order& order, std::vector<std::uint32_t> rows,
                                                  const std::function<void()>& pause) const {
    if (order.Column < 0) {
        // The records' own order, which a new selection has already.
        if (!std::is_sorted(rows.begin(), rows.end())) std::sort(rows.begin(), rows.end());
    } else if (records_ != nullptr) {
        SortRows(*records_, columns_[static_cast<std::size_t>(order.Column)].Shows,
                 order.Direction == Qt::AscendingOrder, locale_, rows, pause);
    }
    return rows;
}

void StatTableModel::SetOrder(const Order& order, std::vector<std::uint32_t> rows) {
    beginResetModel();
    order_ = order;
    rows_ = std::move(rows);
    NumberRows();
    endResetModel();
}

void StatTableModel::NumberRows() {
    std::int32_t number = 0;
    for (const std::uint32_t row : rows_)
        (*records_)[row].ListRow = ++number;
}

} // namespace korvalin
