#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace korvalin {

/// A table of texts for a list, a page or a terminal. Every column has a cell in each row.
struct TextTable {
    struct Column {
        std::string Caption;
        std::vector<std::string> Cells;
    };

    std::vector<Column> Columns;

    std::size_t RowCount() const { return Columns.empty() ? 0 : Columns.front().Cells.size(); }
};

} // namespace korvalin
