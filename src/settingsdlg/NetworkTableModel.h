#pragma once

#include "settingsdlg/NetworkTexts.h"

#include <QAbstractTableModel>

namespace korvalin {

/// A table of texts as the rows and columns of a list.
class NetworkTableModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    using QAbstractTableModel::QAbstractTableModel;

    /// Shows this table instead of the one before.
    void SetTable(TextTable table);
    const TextTable& Table() const { return table_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    const TextTable::Column& Column(int number) const;

    TextTable table_;
};

} // namespace korvalin
