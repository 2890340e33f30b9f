#pragma once

#include "base/Date.h"
#include "base/TableFromOne.h"
#include "platform/Journal.h"

#include <cstdint>
#include <string>

namespace korvalin {

/// One monitored line: an active dial-up connection or an active network adapter.
struct LineRecord {
    std::string LineName;     ///< for display: the alias of EntryName
    double BytesReceived = 0; ///< what the connection has moved, extended beyond 32 bits
    double BytesTransmitted = 0;
    bool IsRas = false;
    double StartReceived = 0; ///< the system's counter, so extended, at which the connection began
    double StartTransmitted = 0;
    double RecordedReceived = 0; ///< of the connection's bytes, those that records hold already
    double RecordedTransmitted = 0;
    double UnseenReceived = 0; ///< adapters: moved before the connection was seen, so not within its time
    double UnseenTransmitted = 0;
    std::string User; ///< filled in the snapshot of the previous pass only
    double SampleTimer =
        0; ///< seconds since midnight at this pass, later seconds on the continuous time base
    double SampleAwake = 0;         ///< seconds the system was awake at this pass: never steps
    std::int32_t WrapsReceived = 0; ///< how often the 32-bit counter started again at 0
    std::int32_t WrapsTransmitted = 0;
    double LastRawReceived = 0; ///< as the system reported it at the previous pass
    double LastRawTransmitted = 0;
    Date LogIn = 0;         ///< 0 = not yet known
    Date UpSince = 0;       ///< adapters: from when on the duration counts
    Date PartLogIn = 0;     ///< when the part began that is not recorded yet; 0 = LogIn
    Date PartEnd = 0;       ///< when that part ended; 0 = it goes on
    bool Continued = false; ///< dial-up: an earlier run may have recorded that part; the next record begins
                            ///< as that one did, to replace it
    bool Connected = false;
    bool Counts64Bits = false; ///< the system's counters of this line never wrap
    std::uint32_t CounterSource =
        0; ///< changes when other counters take this slot; rates never span two sources
    std::uint32_t OperStatus = 0; ///< adapters: operational status
    Date Duration = 0;
    Date SampleTime = 0;
    std::string DeviceName;
    std::string IpAddress;   ///< empty when the line has none
    std::string EntryName;   ///< phone-book entry or adapter description
    std::int32_t Handle = 0; ///< of a dial-up connection; 0 for adapters
    std::uint32_t Index = 0; ///< the kernel's number of the interface; 0 when there is none
    std::string Adapter;     ///< adapters: the kernel's name, which EntryName may be instead of
    std::uint32_t Bps = 0;   ///< dial-up line speed in bits per second
};

/// The part of a connection that no record holds yet: of an adapter's within one day.
struct LinePart {
    Date LogIn = 0;
    Date End = 0;
    double BytesReceived = 0;
    double BytesTransmitted = 0;

    Date Duration() const { return End - LogIn; }
};
/// What no record holds of a connected line.
LinePart OpenPartOf(const LineRecord& line);

/// The same with all that a record of it needs.
OpenConnection ConnectionOf(const LineRecord& line);

/// What is monitored.
enum class LineType {
    Undecided,
    Unknown, ///< dial-up lines without RAS, which nobody can read
    Lan,
    Ras
};

/// What the traffic readers know, one for the whole program. Lines count from 1.
struct LineState {
    /// The current pass; never empty.
    TableFromOne<LineRecord> LineTable{1};
    /// The connected lines as they were at the start of the pass: what is recorded when a line ends.
    TableFromOne<LineRecord> PreviousLineTable{1};
    std::size_t LineCount = 0;
    LineType MonitoredLineType = LineType::Undecided;
    bool AnyLineConnected = false;
    bool RasInstalled = false;
    /// The last failure inside the RAS reader, which then stays off; 0 = none.
    int LastRasError = 0;
    /// Last discrepancy recorded between the measured online time and the one RAS reports.
    Date LogInShift = 0;
    Date ProgramStart = 0;
    std::string User; ///< who runs the program
    std::uint32_t LastCounterSource = 0;
    /// Grows whenever a line begins, ends or is divided.
    std::uint32_t Changes = 0;

    /// Whether the machine is online through a dial-up line.
    bool OnDialUp() const { return MonitoredLineType == LineType::Ras && AnyLineConnected; }
};

/// Which connections are recorded in parts that end with the day.
enum class SplitDays { None = 0, Adapters = 1, All = 2 };

/// The open parts of the lines that are connected.
std::vector<OpenConnection> OpenConnectionsOf(const LineState& lines);

/// The settings that the readers follow.
struct TrafficOptions {
    bool LanProt = true;
    /// An adapter counts as active when it has received more bytes than this.
    std::int32_t LanActive = 100;
    /// A wireless adapter's line is named after its network.
    bool LanByNetwork = true;
    /// Adapters without hardware are followed beside those with it.
    bool LanVirtual = false;
    SplitDays Split = SplitDays::Adapters;
};

} // namespace korvalin
