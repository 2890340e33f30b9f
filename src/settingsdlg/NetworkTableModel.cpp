#include "settingsdlg/NetworkTableModel.h"

namespace korvalin {

void NetworkTableModel::SetTable(TextTable table) {
    beginResetModel();
    table_ = std::move(table);
    endResetModel();
}

int NetworkTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(table_.RowCount());
}

int NetworkTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(table_.Columns.size());
}

const TextTable::Column& NetworkTableModel::Column(int number) const {
    return table_.Columns.at(static_cast<std::size_t>(number));
}

QVariant NetworkTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || role != Qt::DisplayRole) return {};
    return QString::fromStdString(Column(index.column()).Cells.at(static_cast<std::size_t>(index.row())));
}

QVariant NetworkTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::DisplayRole) return QString::fromStdString(Column(section).Caption);
    if (role == Qt::TextAlignmentRole) return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    return {};
}

} // namespace korvalin
