#pragma once

#include "platform/Ras.h"
#include "traffic/CounterLedger.h"
#include "traffic/LineBook.h"

#include <set>

namespace korvalin {

class LanReader;
class NetworkTables;
class Settings;

/// Fills the line table from the active dial-up connections.
class RasReader {
  public:
    struct Parts {
        korvalin::Ras& Ras;
        korvalin::NetworkTables& NetworkTables;
        korvalin::LineState& LineState;
        korvalin::LineBook& LineBook;
        korvalin::CounterLedger& CounterLedger;
        korvalin::LanReader& LanReader;
        korvalin::Settings& Settings;
        korvalin::Errors& Errors;
        korvalin::Clock& Clock;
    };
    explicit RasReader(const Parts& parts) : parts_(parts) {}

    /// One pass. After one failure the reader stays off until the program is started again.
    void Get_Bytes_Transmitted_RAS(TableFromOne<LineRecord>& lines);

  private:
    template <typename F>
    bool Step(F&& step);
    void EndAdapters(TableFromOne<LineRecord>& lines);
    void TakeSlot(std::int32_t handle, std::size_t i, const TableFromOne<LineRecord>& before,
                  LineRecord& line);
    void ReadConnection(const RasConnection& connection, LineRecord& line);
    void BeginLine(const RasConnection& connection, const RasStatistics& statistics, LineRecord& line);
    void MeasureDuration(LineRecord& line, const RasStatistics& statistics);
    void AdvanceEnded(const TableFromOne<LineRecord>& lines);
    void KeepApart(TableFromOne<LineRecord>& lines);
    void CloseEndedLines(TableFromOne<LineRecord>& lines, std::size_t count);

    Parts parts_;
    std::set<std::uint32_t> recordedAsAdapters_; // interfaces, not yet seen as dial-up lines
    bool atStart_ = true;                        // no connection has been looked for before
};

} // namespace korvalin
