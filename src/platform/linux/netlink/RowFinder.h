#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvalin {

/// Finds the rows of links among those of all, which stand by ascending index. Quickest for indexes that
/// come in the rows' own order.
template <typename Row>
class RowFinder {
  public:
    explicit RowFinder(std::vector<Row>& rows) : rows_(rows) {}

    /// Null when there is no such row.
    Row* Find(std::uint32_t index) {
        if (next_ >= rows_.size() || rows_[next_].Index != index) {
            const auto found =
                std::lower_bound(rows_.begin(), rows_.end(), index,
                                 [](const Row& row, std::uint32_t i) { return row.Index < i; });
            next_ = static_cast<std::size_t>(found - rows_.begin());
        }
        return next_ < rows_.size() && rows_[next_].Index == index ? &rows_[next_++] : nullptr;
    }

  private:
    std::vector<Row>& rows_;
    std::size_t next_ = 0;
};

} // namespace korvalin
