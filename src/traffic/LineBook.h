#pragma once

#include "traffic/CloseReason.h"
#include "traffic/LineRecord.h"

#include <functional>
#include <string>

namespace korvalin {

class Clock;
class Errors;

/// Keeps the line table's books: counters that continue beyond 32 bits, lines that end, slots that grow.
class LineBook {
  public:
    /// What the traffic readers need from the floors above them; the program plugs it in.
    struct Hooks {
        /// The user's name for an entry; the entry itself when it has none.
        std::function<std::string(const std::string& entryName)> GetAlias;
        /// Records the line's open part, as PreviousLineTable holds it.
        std::function<void(CloseReason reason, std::size_t line)> SaveStatsLine;
        /// The line table grew: the rate history follows.
        std::function<void()> ResizeRateHistory;
        /// All lines have been read; what has ended has been recorded.
        std::function<void()> PassEnded;
    };

    LineBook(LineState& state, Errors& errors, Clock& clock);

    void Plug(Hooks hooks) { hooks_ = std::move(hooks); }

    /// Continues the counters of a dial-up line whose raw counters were just stored in BytesReceived and
    /// BytesTransmitted, and corrects an implausible log-in time.
    void CheckVolume(LineRecord& line);

    /// Makes the connection's bytes of the raw counters in BytesReceived and BytesTransmitted: 32-bit ones
    /// that have wrapped go on, 64-bit ones that fell began again, and what they had counted stays counted.
    void ContinueCounters(LineRecord& line);

    /// Clears the fields that belong to one pass.
    void ResetLineSamples(TableFromOne<LineRecord>& lines);

    /// Whether a line was connected in the previous pass.
    bool AnyLineWasConnected() const;

    /// Records a connection of the previous pass up to there; it goes on from `partLogIn`.
    void Divide(std::size_t line, CloseReason reason, Date partLogIn);

    /// Records every line of the previous pass that is not in this one, and resizes the table to `newCount`
    /// lines. A dial-up connection is known by its handle, an adapter by its counters: when one drops out
    /// those behind it move up, and they have not ended.
    void RecordClosedConnections(TableFromOne<LineRecord>& lines, std::size_t newCount);

    /// Ends all connections without recording them: they have been, or somebody else counts them.
    void ForgetLines();

    void TellPassEnded() { hooks_.PassEnded(); }

    /// Makes room for line number `count`, keeping the lines there are.
    void GrowTo(TableFromOne<LineRecord>& lines, std::size_t count);

    std::string GetAlias(const std::string& entryName) const { return hooks_.GetAlias(entryName); }

  private:
    void CorrectLogIn(LineRecord& line);
    void LogDrop(const LineRecord& line, const char* maximumName, double last, const char* currentName,
                 double raw);

    LineState& state_;
    Errors& errors_;
    Clock& clock_;
    Hooks hooks_;
};

} // namespace korvalin
