#pragma once

#include "stats/StatCells.h"

#include <QAbstractTableModel>

#include <cstdint>
#include <functional>
#include <vector>

namespace korvalin {

class Language;
struct Locale;

/// Records or sums as the rows of a list. Texts are made when a row comes into sight, so a million rows open
/// at once. The records stay their owner's.
class StatTableModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    StatTableModel(std::vector<StatColumn> columns, Language& language, const Locale& locale,
                   QObject* parent = nullptr);

    /// Shows these records, which must stay as they are until the next call, in the order that was chosen.
    /// Numbers their ListRow by the row that shows them.
    void SetRows(std::vector<StatRecord>& records, std::vector<std::uint32_t> rows);
    void SetUnit(const VolumeUnit& unit);

    /// The index of the record that a row shows.
    std::uint32_t RecordOf(int row) const { return rows_.at(static_cast<std::size_t>(row)); }
    const StatRecord& Record(int row) const { return (*records_)[RecordOf(row)]; }
    /// The text of a cell for a file: what the program notes of its own is in the file's words.
    std::string Text(int row, int column) const;
    /// What a record shows has changed.
    void Refresh(const StatRecord& record);
    std::string Header(int column) const;
    const std::vector<StatColumn>& Columns() const { return columns_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// An order by what a column shows; a negative one is the records' own order.
    struct Order {
        int Column = -1;
        Qt::SortOrder Direction = Qt::AscendingOrder;
    };
    const Order& ChosenOrder() const { return order_; }
    /// The rows in another order, for SetOrder: may take its time in a thread of its own. `pause` is called
    /// now and then and may end it by throwing.
    std::vector<std::uint32_t> Sorted(const Order& order, const std::function<void()>& pause = {}) const {
        return Sorted(order, rows_, pause);
    }
    void SetOrder(const Order& order, std::vector<std::uint32_t> rows);

  private:
    std::vector<std::uint32_t> Sorted(const Order& order, std::vector<std::uint32_t> rows,
                                      const std::function<void()>& pause) const;
    void NumberRows();
    std::string ShownText(int row, int column) const;
    QVariant Alignment(int column) const;

    std::vector<StatColumn> columns_;
    Language& language_;
    const Locale& locale_;
    VolumeUnit unit_;
    std::vector<StatRecord>* records_ = nullptr;
    std::vector<std::uint32_t> rows_;
    Order order_;
};

} // namespace korvalin
