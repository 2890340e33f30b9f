#include "traffic/LineBook.h"

#include "errors/Errors.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>

namespace korvalin {
namespace {
constexpr double counterRange = 4294967296.0; // 2^32
constexpr double halfCounterRange = 2147483648.0;
} // namespace

LineBook::LineBook(LineState& state, Errors& errors, Clock& clock)
    : state_(state), errors_(errors), clock_(clock) {
    hooks_.GetAlias = [](const std::string& entryName) { return entryName; };
    hooks_.SaveStatsLine = [](CloseReason, std::size_t) {};
    hooks_.ResizeRateHistory = [] {};
    hooks_.PassEnded = [] {};
}

// A connection that was up before this program saw it began earlier.
void LineBook::CorrectLogIn(LineRecord& line) {
    const Date start = clock_.Now() - line.Duration;
    if (line.LogIn == 0) {
        line.LogIn = start - 2 * OneSecond;
    } else if (line.LogIn > start) {
        line.LogIn = start - 5 * OneSecond;
    }
}

void LineBook::LogDrop(const LineRecord& line, const char* maximumName, double last, const char* currentName,
                       double raw) {
    const auto log = [&](const std::string& text) { errors_.WriteErrorLog(text, "Error CheckVolume"); };
    log("RAS_EntryName: " + line.EntryName);
    log(fmt::format("{}: {:.0f}", maximumName, last));
    log(fmt::format("{}: {:.0f}", currentName, raw));
    log("RAS_ConnectDateTime: " + FormatDateIso(line.LogIn));
}

void LineBook::ContinueCounters(LineRecord& line) {
    const auto advance = [&](double& bytes, double& last, std::int32_t& wraps, double& start,
                             const char* maximumName, const char* currentName) {
        const double raw = bytes;
        if (raw < last && !line.Counts64Bits && last - halfCounterRange > raw) {
            ++wraps;
        } else if (raw < last) {
            LogDrop(line, maximumName, last, currentName, raw);
            if (line.Counts64Bits) start -= last;
        }
        last = raw;
        bytes = wraps * counterRange + raw - start;
    };
    advance(line.BytesReceived, line.LastRawReceived, line.WrapsReceived, line.StartReceived, "MaxRcved",
            "BytesRecvd");
    advance(line.BytesTransmitted, line.LastRawTransmitted, line.WrapsTransmitted, line.StartTransmitted,
            "MaxXmited", "BytesXmited");
}

void LineBook::CheckVolume(LineRecord& line) {
    errors_.Step("CheckVolume", [&] { CorrectLogIn(line); });
    errors_.Step("CheckVolume", [&] { ContinueCounters(line); });
}

void LineBook::ResetLineSamples(TableFromOne<LineRecord>& lines) {
    const Date now = clock_.Now();
    const double awake = clock_.AwakeSeconds();
    for (LineRecord& line : lines) {
        line.BytesReceived = 0;
        line.BytesTransmitted = 0;
        line.SampleTimer = SecondsOfDay(now);
        line.SampleTime = now;
        line.SampleAwake = awake;
        line.Bps = 0;
        line.Connected = false;
        line.Duration = 0;
    }
}

bool LineBook::AnyLineWasConnected() const {
    const auto& previous = state_.PreviousLineTable;
    return std::any_of(previous.begin(), previous.end(),
                       [](const LineRecord& line) { return line.Connected; });
}

void LineBook::Divide(std::size_t line, CloseReason reason, Date partLogIn) {
    hooks_.SaveStatsLine(reason, line);
    const LineRecord& recorded = state_.PreviousLineTable(line);
    const auto goOn = [&](LineRecord& part) {
        part.RecordedReceived = recorded.BytesReceived;
        part.RecordedTransmitted = recorded.BytesTransmitted;
        part.PartLogIn = partLogIn;
        part.PartEnd = 0;
        part.Continued = false;
    };
    for (LineRecord& current : state_.LineTable) {
        if (current.CounterSource == recorded.CounterSource) goOn(current);
    }
    goOn(state_.PreviousLineTable(line));
    ++state_.Changes;
}

void LineBook::RecordClosedConnections(TableFromOne<LineRecord>& lines, std::size_t newCount) {
    std::unordered_set<std::uint32_t> adapters;
    std::unordered_set<std::int32_t> handles;
    for (const LineRecord& line : lines) {
        if (!line.Connected) continue;
        if (line.IsRas) {
            handles.insert(line.Handle);
        } else {
            adapters.insert(line.CounterSource);
        }
    }
    const TableFromOne<LineRecord>& previous = state_.PreviousLineTable;
    TableFromOne<LineRecord> open;
    for (std::size_t i = 1; i <= previous.Size(); ++i) {
        const LineRecord& line = previous(i);
        const bool goesOn =
            line.IsRas ? handles.contains(line.Handle) : adapters.contains(line.CounterSource);
        if (line.Connected && goesOn) open.Append(line);
        if (line.Connected && !goesOn) hooks_.SaveStatsLine(CloseReason::LineEnded, i);
    }
    for (LineRecord& line : lines) {
        if (!line.Connected) line = LineRecord();
    }
    ++state_.Changes;
    // Should the program end before the next pass, these are still to be recorded.
    open.Resize(std::max<std::size_t>(newCount, 1));
    state_.PreviousLineTable = newCount > 0 ? std::move(open) : TableFromOne<LineRecord>(1);
    state_.LineCount = newCount;
    if (newCount > 0) {
        lines.Resize(newCount);
    } else {
        state_.AnyLineConnected = false;
        lines = TableFromOne<LineRecord>(1);
    }
}

void LineBook::ForgetLines() {
    // Adapters that are followed go on to be; only one more of them leaves the type open for a pass.
    if (state_.LineCount > 0 && state_.MonitoredLineType == LineType::Undecided)
        state_.MonitoredLineType = LineType::Lan;
    state_.LineTable = state_.PreviousLineTable = TableFromOne<LineRecord>(1);
    state_.LineCount = 0;
    state_.AnyLineConnected = false;
    ++state_.Changes;
}

void LineBook::GrowTo(TableFromOne<LineRecord>& lines, std::size_t count) {
    state_.LineCount = count;
    if (count > lines.Size()) {
        lines.Resize(count);
        hooks_.ResizeRateHistory();
    }
}

} // namespace korvalin
