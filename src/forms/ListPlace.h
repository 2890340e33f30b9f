#pragma once

#include <QScrollBar>
#include <QTableView>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace korvalin {

/// Keeps a list's current row and scroll position while its rows are put in anew. The row is known by a key
/// that the same record has before and after; when it has gone, the row at a given place becomes current.
template <typename KeyOf>
class KeepListPlace {
  public:
    using Key = std::pair<std::string, double>;

    KeepListPlace(QTableView& list, KeyOf keyOf, std::optional<int> otherwise = {})
        : list_(list),
          keyOf_(std::move(keyOf)),
          otherwise_(otherwise),
          scroll_(list.verticalScrollBar()->value()) {
        if (list_.currentIndex().isValid()) current_ = keyOf_(list_.currentIndex().row());
    }
    ~KeepListPlace() {
        const int rows = list_.model()->rowCount();
        int row = 0;
        while (current_ && row < rows && keyOf_(row) != *current_)
            ++row;
        if (row == rows && otherwise_) row = std::min(*otherwise_, rows - 1);
        if (current_ && row >= 0 && row < rows) {
            list_.selectionModel()->setCurrentIndex(list_.model()->index(row, 0),
                                                    QItemSelectionModel::NoUpdate);
        }
        list_.verticalScrollBar()->setValue(scroll_);
    }
    KeepListPlace(const KeepListPlace&) = delete;
    KeepListPlace& operator=(const KeepListPlace&) = delete;

  private:
    QTableView& list_;
    KeyOf keyOf_;
    std::optional<int> otherwise_;
    int scroll_;
    std::optional<Key> current_;
};

} // namespace korvalin
