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
}

// False when the log-in time had to be set anew; the counters then have no past to compare with.
bool LineBook::LogInIsPlausible(LineRecord& line) {
    const Date start = clock_.Now() - line.Duration;
    if (line.LogIn == 0) {
        line.LogIn = start - 2 * OneSecond;
        return false;
    }
    if (line.LogIn > start) {
        // The connection was up before this program saw it.
        line.LogIn = start - 5 * OneSecond;
        return false;
    }
    return true;
}

void LineBook::CountWrap(const LineRecord& line, double raw, double last, std::int32_t& wraps,
                         const char* maximumName, const char* currentName) {
    if (raw >= last) return;
    if (!line.Counts64Bits && last - halfCounterRange > raw) {
        ++wraps;
        return;
    }
    const auto log = [&](const std::string& text) { errors_.WriteErrorLog(text, "Error CheckVolume"); };
    log("RAS_EntryName: " + line.EntryName);
    log(fmt::format("{}: {:.0f}", maximumName, last));
    log(fmt::format("{}: {:.0f}", currentName, raw));
    log("RAS_ConnectDateTime: " + FormatDateIso(line.LogIn));
}

void LineBook::CheckVolume(LineRecord& line) {
    const double received = line.BytesReceived;
    const double transmitted = line.BytesTransmitted;
    errors_.Step("CheckVolume", [&] {
        if (!LogInIsPlausible(line)) return;
        CountWrap(line, received, line.LastRawReceived, line.WrapsReceived, "MaxRcved", "BytesRecvd");
        CountWrap(line, transmitted, line.LastRawTransmitted, line.WrapsTransmitted, "MaxXmited",
                  "BytesXmited");
    });
    line.LastRawReceived = received;
    line.LastRawTransmitted = transmitted;
    line.BytesReceived = line.WrapsReceived * counterRange + received;
    line.BytesTransmitted = line.WrapsTransmitted * counterRange + transmitted;
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

void LineBook::RecordClosedConnections(TableFromOne<LineRecord>& lines, std::size_t newCount) {
    std::unordered_set<std::string_view> adapters;
    std::unordered_set<std::int32_t> handles;
    for (const LineRecord& line : lines) {
        if (!line.Connected) continue;
        if (line.IsRas) {
            handles.insert(line.Handle);
        } else {
            adapters.insert(line.EntryName);
        }
    }
    const TableFromOne<LineRecord>& previous = state_.PreviousLineTable;
    TableFromOne<LineRecord> open;
    for (std::size_t i = 1; i <= previous.Size() && i <= lines.Size(); ++i) {
        const LineRecord& line = previous(i);
        const bool goesOn = line.IsRas ? handles.contains(line.Handle) : adapters.contains(line.EntryName);
        if (line.Connected && goesOn) open.Append(line);
        if (line.Connected && !goesOn) hooks_.SaveStatsLine(CloseReason::LineEnded, i);
        if (!lines(i).Connected) lines(i) = LineRecord();
    }
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

void LineBook::GrowTo(TableFromOne<LineRecord>& lines, std::size_t count) {
    state_.LineCount = count;
    if (count > lines.Size()) {
        lines.Resize(count);
        hooks_.ResizeRateHistory();
    }
}

} // namespace korvalin
