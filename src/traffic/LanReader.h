#pragma once

#include "platform/NetworkTables.h"
#include "traffic/CounterLedger.h"
#include "traffic/LineBook.h"
#include "traffic/LineNames.h"

namespace korvalin {

/// Fills the line table from the active network adapters, packed from line 1 in the order of the interface
/// table. Bytes that leave the machine are counted where they leave it: at adapters with hardware, at a bond
/// instead of its ports; at others only while there is no hardware that is up, or when the user wants them.
class LanReader {
  public:
    struct Parts {
        korvalin::NetworkTables& NetworkTables;
        korvalin::LineState& LineState;
        korvalin::LineBook& LineBook;
        korvalin::CounterLedger& CounterLedger;
        korvalin::LineNames& LineNames;
        const korvalin::TrafficOptions& TrafficOptions;
        korvalin::Errors& Errors;
        korvalin::Clock& Clock;
    };
    explicit LanReader(const Parts& parts) : parts_(parts) {}

    /// Reads all adapters into the lines, and records those that have ended.
    void Get_Bytes_Transmitted_LAN(TableFromOne<LineRecord>& lines);

    /// Reads the table before the pass's own reading of adapters: up to where ended connections
    /// have counted.
    void Look() { looked_ = ReadTable(); }
    /// The counters of an interface in the latest table, or of one that was removed since the table before.
    const InterfaceRow* LatestOf(std::uint32_t index) const;

    /// What adapters move while nobody follows them is a line's once one is followed, or nobody's.
    enum class Unfollowed { Kept, Nobodys };
    /// Looks at the adapters in a pass that follows none of them.
    void Observe(Unfollowed bytes);

  private:
    template <typename F>
    void Step(F&& step);
    // When the table was read.
    struct Reading {
        Date Time = 0;
        double Awake = 0;
    };
    bool CarriesDialUp(std::uint32_t index) const;
    bool ReadTable();
    bool IsLeftOut(const InterfaceRow& row) const;
    bool PassesThreshold(const InterfaceRow& row) const;
    bool IsActive(const InterfaceRow& row) const;
    const InterfaceRow* FindRow(std::uint32_t index) const;
    LineRecord* FindOpen(std::uint32_t index, std::size_t slot);
    void EndLines();
    void EndRemoved(const InterfaceRow& row);
    bool GoesOn(std::size_t i, const InterfaceRow* row);
    void ReadRows(TableFromOne<LineRecord>& lines, std::size_t& accepted);
    LineRecord BeginLine(const InterfaceRow& row, const std::string& name);
    void NameLine(const InterfaceRow& row, const std::string& name, LineRecord& line);
    void ReadCounters(const InterfaceRow& row, LineRecord& line);

    Parts parts_;
    std::vector<InterfaceRow> rows_;
    std::vector<InterfaceRow> removed_; // since the pass before
    Reading reading_;
    bool looked_ = false; // the table is this pass's
    bool hardwareIsUp_ = false;
    bool atStart_ = true; // no table has been read before
    bool ended_ = false;  // a connection has ended in this pass
    int progress_ = 0;    // which step failed, for the report
};

} // namespace korvalin
