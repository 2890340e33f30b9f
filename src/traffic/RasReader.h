#pragma once

#include "platform/Ras.h"
#include "traffic/CounterLedger.h"
#include "traffic/LineBook.h"

#include <functional>
#include <set>

namespace korvalin {

class LanReader;
class NetworkTables;
class Settings;

/// Fills the line table from the active dial-up connections.
class RasReader {
  public:
    RasReader(Ras& ras, NetworkTables& network, LineState& state, LineBook& book, CounterLedger& ledger,
              LanReader& adapters, Settings& settings, Errors& errors, Clock& clock);

    /// One pass. After one failure the reader stays off until the program is started again.
    void Get_Bytes_Transmitted_RAS(TableFromOne<LineRecord>& lines);

    /// Copies the system's TCP figures into line 1.
    void ReadTcpStatistics();

  private:
    bool Step(const std::function<void()>& step);
    void EndAdapters(TableFromOne<LineRecord>& lines);
    void TakeSlot(std::int32_t handle, std::size_t i, const TableFromOne<LineRecord>& before,
                  LineRecord& line);
    void ReadConnection(const RasConnection& connection, LineRecord& line);
    void BeginLine(const RasConnection& connection, const RasStatistics& statistics, LineRecord& line);
    void MeasureDuration(LineRecord& line, const RasStatistics& statistics);
    void AdvanceEnded(const TableFromOne<LineRecord>& lines);
    void KeepApart(TableFromOne<LineRecord>& lines);
    void CloseEndedLines(TableFromOne<LineRecord>& lines, std::size_t count);

    Ras& ras_;
    NetworkTables& network_;
    LineState& state_;
    LineBook& book_;
    CounterLedger& ledger_;
    LanReader& adapters_;
    Settings& settings_;
    Errors& errors_;
    Clock& clock_;
    std::set<std::uint32_t> recordedAsAdapters_; // interfaces, not yet seen as dial-up lines
    bool atStart_ = true;                        // no connection has been looked for before
};

} // namespace korvalin
