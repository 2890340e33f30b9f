#pragma once

#include "platform/Files.h"
#include "traffic/CloseReason.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

class Clock;
class Errors;
class Language;
class RecordingLock;
struct LineRecord;
struct LineState;
struct Locale;

/// Writes ended connections to the statistics file and to its export, as the previous pass has left them.
class Recorder {
  public:
    struct Parts {
        const LineState& Lines;
        korvalin::Files& Files;
        korvalin::Errors& Errors;
        korvalin::Language& Language;
        korvalin::Clock& Clock;
        korvalin::RecordingLock& RecordingLock;
        const Locale& UserLocale;
        std::function<std::filesystem::path()> DataFolder;
    };
    explicit Recorder(Parts parts) : parts_(std::move(parts)) {}

    /// Becomes the one program that records into the data folder; false while another one is.
    bool TakeOver();

    /// Records line `index`, or all of them (0). Lines that moved next to nothing
    /// are left out. A line that cannot be written goes to the error log, and so does why. Does nothing while
    /// another program records.
    void SaveStatsLine(CloseReason reason, std::size_t index);

  private:
    std::vector<const LineRecord*> LinesToRecord(std::size_t index) const;
    double DurationOf(const LineRecord& line) const;
    std::string InfoText(CloseReason reason) const;
    std::string StatLines(const std::vector<const LineRecord*>& lines, std::string_view info) const;
    std::string ExportLines(const std::vector<const LineRecord*>& lines, std::string_view info) const;
    void Append(std::string_view fileName, std::string_view header, const std::string& lines,
                Files::Flush flush);

    Parts parts_;
};

} // namespace korvalin
