#pragma once

#include <QScrollBar>
#include <QTableView>

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace korvalin {

/// Keeps a list's current row and scroll position while its rows are put in anew. The row is known by a key
/// that the same record has before and after.
class KeepListPlace {
  public:
    using Key = std::pair<std::string, double>;
    using KeyOf = std::function<Key(int row)>;

    KeepListPlace(QTableView& list, KeyOf keyOf)
        : list_(list), keyOf_(std::move(keyOf)), scroll_(list.verticalScrollBar()->value()) {
        if (list_.currentIndex().isValid()) current_ = keyOf_(list_.currentIndex().row());
    }
    ~KeepListPlace() {
        for (int row = 0; current_ && row < list_.model()->rowCount(); ++row) {
            if (keyOf_(row) != *current_) continue;
            list_.selectionModel()->setCurrentIndex(list_.model()->index(row, 0),
                                                    QItemSelectionModel::NoUpdate);
            break;
        }
        list_.verticalScrollBar()->setValue(scroll_);
    }
    KeepListPlace(const KeepListPlace&) = delete;
    KeepListPlace& operator=(const KeepListPlace&) = delete;

  private:
    QTableView& list_;
    KeyOf keyOf_;
    int scroll_;
    std::optional<Key> current_;
};

} // namespace korvalin
