#pragma once

#include "platform/Ras.h"
#include "traffic/CounterLedger.h"
#include "traffic/LineBook.h"

#include <functional>

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
    std::vector<RasConnection> Enumerate();
    void ReadConnection(const RasConnection& connection, std::size_t i, LineRecord& line);
    void BeginLine(const RasConnection& connection, const RasStatistics& statistics, LineRecord& line);
    void MeasureDuration(LineRecord& line, const RasStatistics& statistics);
    void AdvanceEnded(const TableFromOne<LineRecord>& lines);
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
    bool lineSetChanged_ = false;
    // Connections that go on although the table was cleared, until the next pass finds them again.
    std::vector<LineRecord> carriedOn_;
    bool atStart_ = true; // no connection has been looked for before
};

} // namespace korvalin
