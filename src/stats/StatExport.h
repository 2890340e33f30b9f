// Rows of a list as text for the clipboard, a file or a page.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

/// A list as it is shown, cell by cell; columns that are not for display are left out.
struct ListTexts {
    std::vector<std::string> Headers;
    std::size_t RowCount = 0;
    std::function<std::string(std::size_t row, std::size_t column)> Cell;
    std::vector<bool> IsFigure; ///< by column
    std::string UnitName;       ///< what stands behind volumes
};

/// The list as tab-separated text with a header line; every cell ends with a tab, every line with CR LF.
/// Durations below an hour get "00:" in front, so that a spreadsheet does not take minutes for hours, and
/// volumes lose their unit.
std::string CopiedText(const ListTexts& list);

/// A self-contained page with the list as a table below a title and a caption, and a drawing (SVG) unless
/// that is empty.
std::string HtmlPage(const ListTexts& list, std::string_view title, std::string_view caption,
                     std::string_view drawing);

} // namespace korvalin
