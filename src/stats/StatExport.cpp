#include "stats/StatExport.h"

#include "base/Characters.h"
#include "base/Text.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr std::string_view separator = "\t";
constexpr std::string_view lineEnd = "\r\n";

// "m:ss" or "mm:ss" with both parts below 60.
bool IsMinutesAndSeconds(std::string_view text) {
    const std::size_t colon = text.size() - 3;
    if ((text.size() != 4 && text.size() != 5) || text[colon] != ':') return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i != colon && !IsDigit(text[i])) return false;
    }
    return text[colon + 1] < '6' && (colon == 1 || text[0] < '6');
}

std::string CopiedCell(std::string text, bool isFigure, std::string_view unitName) {
    if (isFigure && text.size() > unitName.size() && text.ends_with(unitName) &&
        text[text.size() - unitName.size() - 1] == ' ') {
        text.resize(text.size() - unitName.size() - 1);
    } else if (text.size() >= 4 && IsMinutesAndSeconds(text)) {
        text.insert(0, text.size() == 5 ? "00:" : "00:0");
    }
    return text;
}

void AppendTableRow(std::string& page, const ListTexts& list, std::size_t row) {
    page += "<tr>";
    for (std::size_t column = 0; column < list.Headers.size(); ++column) {
        page += list.IsFigure[column] ? "<td class=\"figure\">" : "<td>";
        page += EscapeMarkup(list.Cell(row, column)) + "</td>";
    }
    page += "</tr>\n";
}

} // namespace

std::string CopiedText(const ListTexts& list) {
    std::string text;
    for (const std::string& header : list.Headers)
        text.append(header).append(separator);
    text += lineEnd;
    for (std::size_t row = 0; row < list.RowCount; ++row) {
        for (std::size_t column = 0; column < list.Headers.size(); ++column) {
            std::string cell = list.Cell(row, column);
            if (column > 0) cell = CopiedCell(std::move(cell), list.IsFigure[column], list.UnitName);
            text.append(cell).append(separator);
        }
        text += lineEnd;
    }
    return text;
}

std::string HtmlPage(const ListTexts& list, std::string_view title, std::string_view caption,
                     std::string_view drawing) {
    std::string page = "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>" +
                       EscapeMarkup(title) +
                       "</title>\n<style>\n"
                       "body { font-family: sans-serif; margin: 2em; }\n"
                       "table { border-collapse: collapse; }\n"
                       "caption { text-align: left; padding: 0.5em 0; color: #555; }\n"
                       "th, td { padding: 0.2em 0.8em; text-align: left; border-bottom: 1px solid #ddd; }\n"
                       "td.figure { text-align: right; white-space: nowrap; }\n"
                       "tr:nth-child(even) { background: #f4f8fb; }\n"
                       "svg { max-width: 100%; height: auto; margin-bottom: 1em; }\n"
                       "</style>\n</head>\n<body>\n<h1>" +
                       EscapeMarkup(title) + "</h1>\n";
    page += drawing;
    page += "\n<table>\n<caption>" + EscapeMarkup(caption) + "</caption>\n<tr>";
    for (const std::string& header : list.Headers)
        page += "<th>" + EscapeMarkup(header) + "</th>";
    page += "</tr>\n";
    for (std::size_t row = 0; row < list.RowCount; ++row)
        AppendTableRow(page, list, row);
    page += "</table>\n</body>\n</html>\n";
    return page;
}

} // namespace korvalin
