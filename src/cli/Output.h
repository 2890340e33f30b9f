// Rows of figures for people, spreadsheets and programs.
#pragma once

#include "base/Date.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

enum class OutputFormat { Table, Json, Csv };

/// Prints rows as they come: an aligned table, one JSON array of objects, or comma-separated values with a
/// header. The same columns in each.
class Output {
  public:
    struct Column {
        std::string_view Key;
        int Width; ///< of the table's column; negative: aligned to the right
    };
    /// A number is printed as it is, a text quoted where the format wants it.
    struct Cell {
        std::string Text;
        bool IsNumber = false;
        std::string Zone = {}; ///< of a time, for programs: "+01:00"
    };

    Output(OutputFormat format, std::vector<Column> columns);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Row(const std::vector<Cell>& cells);

  private:
    void TableRow(const std::vector<Cell>& cells) const;
    void CsvRow(const std::vector<Cell>& cells) const;
    void JsonRow(const std::vector<Cell>& cells);

    OutputFormat format_;
    std::vector<Column> columns_;
    bool first_ = true;
};

Output::Cell TextCell(std::string_view text);
/// A whole number, whatever its size.
Output::Cell NumberCell(double number);
/// A time span in whole seconds.
Output::Cell SecondsCell(Date span);
/// A local time with the zone that it was in: "2004-12-31T22:22:22+01:00", for people without the zone.
std::string ZonedTime(Date date);
Output::Cell DateTimeCell(Date date);
/// "2004-12-31"
Output::Cell DateCell(Date date);

} // namespace korvalin
