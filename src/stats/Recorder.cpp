#include "stats/Recorder.h"

#include "base/Locale.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "lang/Language.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/RecordingLock.h"
#include "stats/StatFileName.h"
#include "stats/StatLine.h"
#include "traffic/LineRecord.h"

#include <cerrno>
#include <cmath>
#include <system_error>

namespace korvalin {
namespace {

constexpr std::string_view logGroup = "SaveStats";
constexpr double fewBytes = 1000; // a line without duration must have received more to be recorded
constexpr std::string_view exportHeader =
    "Line,LogIn,LogOut,Duration,Bytes Transmitted,Bytes Received,Bytes Total,User,IP,Info\r\n";

// What the user or another program has closed to writing, as opposed to what is broken or full.
bool IsDenied(int error) {
    return error == EAGAIN || error == EACCES || error == EPERM || error == EROFS;
}

// A name may hold a line break; a row must not.
std::string OneLine(std::string_view text) {
    return ReplaceAll(ReplaceAll(text, "\r", " "), "\n", " ");
}

std::string NumberText(double number, const Locale& locale) {
    if (number == std::trunc(number)) return fmt::format("{:.0f}", number);
    return ReplaceAll(fmt::format("{}", number), ".", locale.DecimalMark);
}

} // namespace

bool Recorder::TakeOver() {
    return parts_.RecordingLock.Take(parts_.DataFolder());
}

void Recorder::SaveStatsLine(CloseReason reason, std::size_t index) {
    constexpr std::string_view procName = "SaveStatsLine";
    const std::vector<const LineRecord*> lines = LinesToRecord(index);
    if (lines.empty() || !TakeOver()) return;
    std::string info;
    parts_.Errors.Step(procName, [&] { info = InfoText(reason); });
    parts_.Errors.Step(procName,
                       [&] { Append(StatFileName, "", StatLines(lines, info), Files::Flush::Yes); });
    parts_.Errors.Step(
        procName, [&] { Append(StatExportName, exportHeader, ExportLines(lines, info), Files::Flush::No); });
}

std::vector<const LineRecord*> Recorder::LinesToRecord(std::size_t index) const {
    const TableFromOne<LineRecord>& previous = parts_.Lines.PreviousLineTable;
    const std::size_t first = index == 0 ? 1 : index;
    const std::size_t last = index == 0 ? std::min(parts_.Lines.LineCount, previous.Size()) : index;
    std::vector<const LineRecord*> lines;
    for (std::size_t i = first; i <= last && i <= previous.Size(); ++i) {
        const LineRecord& line = previous(i);
        if (line.BytesReceived > fewBytes || line.Duration != 0) lines.push_back(&line);
    }
    return lines;
}

double Recorder::DurationOf(const LineRecord& line) const {
    return line.Duration != 0 ? line.Duration : parts_.Clock.Now() - parts_.Lines.ProgramStart;
}

std::string Recorder::InfoText(CloseReason reason) const {
    Language& language = parts_.Language;
    std::string text;
    switch (reason) {
    case CloseReason::WindowMenu:
    case CloseReason::Program: text = language.Lng("modStats", 2); break;
    case CloseReason::SystemEnd: text = language.Lng("modStats", 3); break;
    case CloseReason::TaskManager: text = language.Lng("modStats", 4); break;
    case CloseReason::LineEnded: text = language.Lng("frmStatistik", 15); break;
    default: text = fmt::format("{} {}.", language.Lng("modStats", 5), static_cast<int>(reason)); break;
    }
    const Date now = parts_.Clock.Now();
    return FormatPattern(now, parts_.UserLocale.ShortDate) + " " +
           FormatPattern(now, parts_.UserLocale.Time) + " " + text;
}

std::string Recorder::StatLines(const std::vector<const LineRecord*>& lines, std::string_view info) const {
    std::string text;
    for (const LineRecord* line : lines) {
        WriteStatRecord(text, {line->EntryName, line->LogIn, DurationOf(*line), line->BytesTransmitted,
                               line->BytesReceived, info, line->User});
    }
    return text;
}

std::string Recorder::ExportLines(const std::vector<const LineRecord*>& lines, std::string_view info) const {
    const Locale& locale = parts_.UserLocale;
    const auto date = [&](Date value) { return FormatDateGeneral(value, locale); };
    const auto number = [&](double value) { return NumberText(value, locale); };
    std::string text;
    for (const LineRecord* line : lines) {
        const Date duration = DurationOf(*line);
        const std::string row = fmt::format(
            "{},{},{},{},{},{},{},{},{},{}", line->EntryName, date(line->LogIn), date(line->LogIn + duration),
            date(duration), number(line->BytesTransmitted), number(line->BytesReceived),
            number(line->BytesTransmitted + line->BytesReceived), line->User, line->IpAddress, info);
        text.append(OneLine(row)).append(StatLineEnd);
    }
    return text;
}

// Nothing is tried again; what could not be written is kept in the log.
void Recorder::Append(std::string_view fileName, std::string_view header, const std::string& lines,
                      Files::Flush flush) {
    const std::filesystem::path path = parts_.DataFolder() / fileName;
    const int error = parts_.Files.AppendLines(path, header, lines, StatLineEnd, flush);
    if (error == 0) return;
    if (IsDenied(error)) parts_.Errors.WriteErrorLog("File locked: " + path.string(), logGroup);
    for (const std::string_view line : Split(lines, '\n', lines.size())) {
        if (!line.empty()) parts_.Errors.WriteErrorLog(line, logGroup);
    }
    if (!IsDenied(error)) throw std::system_error(error, std::generic_category(), path.string());
}

} // namespace korvalin
