#include "cli/Output.h"

#include "base/Locale.h"
#include "base/Text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace korvalin {
namespace {

std::string Padded(std::string_view text, int width) {
    const auto room = static_cast<std::size_t>(std::abs(width));
    const std::string padding(room - std::min(CharacterCount(text), room), ' ');
    return width < 0 ? padding + std::string(text) : std::string(text) + padding;
}

// RFC 4180
std::string Quoted(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    return "\"" + ReplaceAll(text, "\"", "\"\"") + "\"";
}

std::string IsoTime(Date date) {
    return ReplaceAll(FormatDateIso(date), " ", "T");
}

// The zone's distance from UTC at a local time (RFC 3339), as the system's rules have it; of an hour that
// comes twice in autumn either one.
std::string ZoneOf(Date date) {
    const DateParts parts = SplitDate(date);
    std::tm local{};
    local.tm_year = parts.Year - 1900;
    local.tm_mon = parts.Month - 1;
    local.tm_mday = parts.Day;
    local.tm_hour = parts.Hour;
    local.tm_min = parts.Minute;
    local.tm_sec = parts.Second;
    local.tm_isdst = -1;
    if (std::mktime(&local) == -1) return "";
    const long minutes = std::abs(local.tm_gmtoff) / 60;
    return fmt::format("{}{:02}:{:02}", local.tm_gmtoff < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

// A name may hold any bytes; one that is no UTF-8 must not end the output.
std::string JsonText(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace

Output::Output(OutputFormat format, std::vector<Column> columns)
    : format_(format), columns_(std::move(columns)) {
    std::vector<Cell> heading;
    for (const Column& column : columns_)
        heading.push_back(TextCell(column.Key));
    if (format_ == OutputFormat::Table) TableRow(heading);
    if (format_ == OutputFormat::Csv) CsvRow(heading);
    if (format_ == OutputFormat::Json) std::fputs("[", stdout);
}

Output::~Output() {
    if (format_ == OutputFormat::Json) std::fputs("\n]\n", stdout);
}

void Output::Row(const std::vector<Cell>& cells) {
    switch (format_) {
    case OutputFormat::Table: return TableRow(cells);
    case OutputFormat::Csv: return CsvRow(cells);
    case OutputFormat::Json: return JsonRow(cells);
    }
}

void Output::TableRow(const std::vector<Cell>& cells) const {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i)
        line += (i > 0 ? "  " : "") + Padded(EscapeControls(cells[i].Text), columns_[i].Width);
    line.resize(line.find_last_not_of(' ') + 1);
    fmt::print("{}\n", line);
}

void Output::CsvRow(const std::vector<Cell>& cells) const {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::string text = cells[i].Text + cells[i].Zone;
        line += (i > 0 ? "," : "") + (cells[i].IsNumber ? text : Quoted(WithoutFormula(text)));
    }
    fmt::print("{}\n", line);
}

void Output::JsonRow(const std::vector<Cell>& cells) {
    std::string row = first_ ? "\n{" : ",\n{";
    first_ = false;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        row += fmt::format("{}\"{}\": {}", i > 0 ? ", " : "", columns_[i].Key,
                           cells[i].IsNumber ? cells[i].Text : JsonText(cells[i].Text + cells[i].Zone));
    }
    fmt::print("{}}}", row);
}

Output::Cell TextCell(std::string_view text) {
    return {std::string(text), false};
}

Output::Cell NumberCell(double number) {
    return {fmt::format("{:.0f}", number), true};
}

Output::Cell SecondsCell(Date span) {
    return NumberCell(std::round(span * SecondsPerDay));
}

Output::Cell DateTimeCell(Date date) {
    return {IsoTime(date), false, ZoneOf(date)};
}

std::string ZonedTime(Date date) {
    return IsoTime(date) + ZoneOf(date);
}

Output::Cell DateCell(Date date) {
    return TextCell(FormatPattern(date, "yyyy-mm-dd"));
}

} // namespace korvalin
