#pragma once

#include <QScrollBar>
#include <QTableView>

#include <algorithm>
#include <optional>
#include <type_traits>
#include <vector>

namespace korvalin {

/// The rows that are selected, in ascending order.
inline std::vector<int> SelectedRows(const QTableView& list) {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : list.selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

/// Selects exactly the rows that are wanted, run by run.
template <typename Wanted>
void SelectRows(QTableView& list, const Wanted& wanted) {
    QItemSelection selection;
    const QAbstractItemModel& model = *list.model();
    const int rows = model.rowCount();
    const int lastColumn = model.columnCount() - 1;
    for (int first = 0; first < rows; ++first) {
        int end = first;
        while (end < rows && wanted(end))
            ++end;
        if (end > first) selection.append({model.index(first, 0), model.index(end - 1, lastColumn)});
        first = end;
    }
    list.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

/// Keeps what is selected and the current row while a list's rows are put in anew, and the row on top unless
/// the list is sorted otherwise. A row is known by a key that the same record has before and after. A list
/// that shows its beginning goes on to. Where selected rows go away, `otherwise` is the row that becomes
/// current in place of one that has gone, and nothing is selected.
template <typename KeyOf>
class KeepListView {
  public:
    using Key = std::invoke_result_t<KeyOf, int>;
    enum class Top { Follow, Stay };

    KeepListView(QTableView& list, KeyOf keyOf, Top top = Top::Follow, std::optional<int> otherwise = {})
        : list_(list),
          keyOf_(std::move(keyOf)),
          otherwise_(otherwise),
          scroll_(list.verticalScrollBar()->value()) {
        const int rows = list.model()->rowCount();
        if (list.currentIndex().isValid()) current_ = keyOf_(list.currentIndex().row());
        if (top == Top::Follow && scroll_ > 0 && scroll_ < rows) top_ = keyOf_(scroll_);
        if (otherwise) return;
        const std::vector<int> selected = SelectedRows(list);
        all_ = rows > 0 && static_cast<int>(selected.size()) == rows;
        if (all_) return;
        for (const int row : selected)
            selected_.push_back(keyOf_(row));
        std::sort(selected_.begin(), selected_.end());
    }
    ~KeepListView() {
        const auto isSelected = [this](int row) {
            return all_ || std::binary_search(selected_.begin(), selected_.end(), keyOf_(row));
        };
        if (all_ || !selected_.empty()) SelectRows(list_, isSelected);
        if (const auto row = CurrentRow()) {
            list_.selectionModel()->setCurrentIndex(list_.model()->index(*row, 0),
                                                    QItemSelectionModel::NoUpdate);
        }
        const auto top = top_ ? RowOf(*top_) : std::nullopt;
        list_.verticalScrollBar()->setValue(top.value_or(scroll_));
    }
    KeepListView(const KeepListView&) = delete;
    KeepListView& operator=(const KeepListView&) = delete;

  private:
    std::optional<int> CurrentRow() const {
        if (!current_) return std::nullopt;
        const auto row = RowOf(*current_);
        const int last = list_.model()->rowCount() - 1;
        return row || !otherwise_ || last < 0 ? row : std::min(*otherwise_, last);
    }
    std::optional<int> RowOf(const Key& key) const {
        for (int row = 0; row < list_.model()->rowCount(); ++row)
            if (keyOf_(row) == key) return row;
        return std::nullopt;
    }

    QTableView& list_;
    KeyOf keyOf_;
    std::optional<int> otherwise_;
    int scroll_;
    std::optional<Key> current_;
    std::optional<Key> top_;
    std::vector<Key> selected_;
    bool all_ = false;
};

} // namespace korvalin
