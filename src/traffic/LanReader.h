#pragma once

#include "platform/NetworkTables.h"
#include "traffic/LineBook.h"

namespace korvalin {

/// Fills the line table from the active network adapters, packed from line 1 in the order of the interface
/// table.
class LanReader {
  public:
    LanReader(NetworkTables& network, LineState& state, LineBook& book, const TrafficOptions& options,
              Errors& errors, Clock& clock);

    void Get_Bytes_Transmitted_LAN(TableFromOne<LineRecord>& lines);

  private:
    template <typename F>
    void Step(F&& step);
    bool ReadTable();
    void ReadRows(TableFromOne<LineRecord>& lines, std::size_t& accepted);
    bool IsActive(const InterfaceRow& row) const;
    // When the table was read.
    struct Reading {
        Date Time;
        double Awake;
    };
    void TakeSource(const InterfaceRow& row, LineRecord& line);
    void FillLine(const InterfaceRow& row, const Reading& reading, LineRecord& line);

    NetworkTables& network_;
    LineState& state_;
    LineBook& book_;
    const TrafficOptions& options_;
    Errors& errors_;
    Clock& clock_;
    std::vector<InterfaceRow> rows_; // kept for its storage
    bool replaced_ = false;          // another adapter stands in a slot than in the pass before
    int progress_ = 0;               // which step failed, for the report
};

} // namespace korvalin
