#include "stats/Recorder.h"

#include "base/Locale.h"
#include "base/Text.h"
#include "data/DataFolder.h"
#include "errors/Errors.h"
#include "errors/FileFailures.h"
#include "lang/Language.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/RecordingLock.h"
#include "stats/LineReader.h"
#include "stats/MonthSums.h"
#include "stats/RecordPlace.h"
#include "stats/StatLine.h"
#include "traffic/CounterLedger.h"
#include "traffic/LineRecord.h"

#include <cerrno>
#include <cmath>
#include <fstream>
#include <system_error>

namespace korvalin {
namespace {

constexpr std::string_view logGroup = "SaveStats";
constexpr double fewBytes = 1000; // a line without duration must have received more to be recorded
constexpr std::string_view exportHeader =
    "Line,LogIn,LogOut,Duration,Bytes Transmitted,Bytes Received,Bytes Total,User,IP,Info\r\n";

// One that replaces an earlier record has its beginning, and its end too where another record follows.
RecordTime PlaceOf(const RecordTime& wanted, bool mayRepeat, std::vector<RecordTime> others) {
    const auto isEarlier = [&](const RecordTime& other) {
        return mayRepeat && RoundToSecond(other.LogIn) == RoundToSecond(wanted.LogIn);
    };
    const auto earlier = std::find_if(others.rbegin(), others.rend(), isEarlier);
    if (earlier == others.rend()) return FindPlace(wanted, others);
    const RecordTime replaced = *earlier;
    const RecordTime whole = {wanted.LogIn, std::max(wanted.End, replaced.End)};
    std::erase_if(others, isEarlier);
    const bool isFree = std::none_of(others.begin(), others.end(),
                                     [&](const RecordTime& other) { return WouldMerge(whole, other); });
    return isFree ? whole : replaced;
}

std::string NumberText(double number, const Locale& locale) {
    if (number == std::trunc(number)) return fmt::format("{:.0f}", number);
    return ReplaceAll(fmt::format("{}", number), ".", locale.DecimalMark);
}

} // namespace

bool Recorder::TakeOver() {
    const bool taken = parts_.RecordingLock.Take(parts_.DataFolder.GetDataPath());
    tookOver_ = tookOver_ || taken;
    return taken;
}

std::vector<OpenConnection> Recorder::SaveStatsLine(CloseReason reason, std::size_t index) {
    const TableFromOne<LineRecord>& previous = parts_.LineState.PreviousLineTable;
    const std::size_t first = index == 0 ? 1 : index;
    const std::size_t last = index == 0 ? std::min(parts_.LineState.LineCount, previous.Size()) : index;
    // What a program has seen that only looks on is for the one that records.
    std::vector<OpenConnection> made;
    if (!tookOver_ || !TakeOver()) return made;
    for (std::size_t i = first; i <= last && i <= previous.Size(); ++i) {
        OpenConnection record = ConnectionOf(previous(i));
        if (record.IsRas && previous(i).Duration == 0) {
            if (record.BytesReceived <= fewBytes) continue;
            record.End = record.LogIn + (parts_.Clock.Now() - parts_.LineState.ProgramStart);
        }
        made.push_back(Record(std::move(record), reason));
    }
    return made;
}

OpenConnection Recorder::Record(OpenConnection record, CloseReason reason) {
    constexpr std::string_view procName = "SaveStatsLine";
    const bool isEmpty = record.BytesReceived + record.BytesTransmitted == 0 && record.End == record.LogIn;
    if (isEmpty) return record;
    Waiting waiting;
    parts_.Errors.Step(procName, [&] { Settle(record); });
    std::string info;
    parts_.Errors.Step(procName, [&] { info = InfoText(reason); });
    WriteStatRecord(waiting.Record.StatLine,
                    {record.LineName, record.LogIn, record.End - record.LogIn, record.BytesTransmitted,
                     record.BytesReceived, info, record.User});
    parts_.Errors.Step(procName, [&] { waiting.Record.ExportLine = ExportLine(record, info); });
    waiting_.push_back(std::move(waiting));
    parts_.MonthSums.Add(record);
    return record;
}

// As long as time goes forward the other records of the line have ended before.
void Recorder::Settle(OpenConnection& record) const {
    if (!record.IsRas) {
        record.LogIn = FloorToSecond(record.LogIn);
        record.End = std::max(FloorToSecond(record.End), record.LogIn);
    }
    const Date last = parts_.CounterLedger.LastEnd(record.LineName);
    if (last == 0 || last >= record.LogIn) {
        const RecordTime place =
            PlaceOf({record.LogIn, record.End}, record.MayRepeat, TimesOf(record.LineName));
        record.LogIn = place.LogIn;
        record.End = place.End;
    }
    parts_.CounterLedger.NoteEnd(record.LineName, record.End);
}

std::vector<RecordTime> Recorder::TimesOf(std::string_view lineName) const {
    std::vector<RecordTime> times;
    const auto take = [&](std::string_view text) {
        const auto fields = ParseStatLine(text, parts_.Locale);
        if (!fields || !EqualsNoCase(fields->LineName, lineName)) return;
        times.push_back({fields->LogIn, RoundToSecond(fields->LogIn + fields->Duration)});
    };
    const std::filesystem::path path = parts_.DataFolder.GetDataPath() / StatFileName;
    if (std::filesystem::exists(path)) {
        ReadLines(path, [&](std::string_view line) {
            take(IsValidUtf8(line) ? std::string(line) : FromWindows1252(line));
        });
    }
    for (const Waiting& waiting : waiting_)
        take(std::string_view(waiting.Record.StatLine).substr(0, waiting.Record.StatLine.find('\r')));
    return times;
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
    case CloseReason::DayEnded: text = language.Lng("modStats", 6); break;
    case CloseReason::Renamed: text = language.Lng("modStats", 7); break;
    case CloseReason::Interrupted: text = language.Lng("modStats", 8); break;
    default: text = fmt::format("{} {}.", language.Lng("modStats", 5), static_cast<int>(reason)); break;
    }
    const Date now = parts_.Clock.Now();
    return FormatPattern(now, parts_.Locale.ShortDate) + " " + FormatPattern(now, parts_.Locale.Time) + " " +
           text;
}

std::string Recorder::ExportLine(const OpenConnection& record, std::string_view info) const {
    const Locale& locale = parts_.Locale;
    const auto date = [&](Date value) { return FormatDateGeneral(value, locale); };
    const auto number = [&](double value) { return NumberText(value, locale); };
    const auto text = [](std::string_view value) {
        return WithoutFormula(ReplaceAll(DecodeLine(value), ",", ";"));
    };
    const std::string row = fmt::format(
        "{},{},{},{},{},{},{},{},{},{}", text(record.LineName), date(record.LogIn), date(record.End),
        FormatDuration(record.End - record.LogIn), number(record.BytesTransmitted),
        number(record.BytesReceived), number(record.BytesTransmitted + record.BytesReceived),
        text(record.User), text(record.IpAddress), text(info));
    return OneLine(row).append(StatLineEnd);
}

// ---- on their way into the files

std::vector<PendingRecord> Recorder::Pending() const {
    std::vector<PendingRecord> pending;
    for (const Waiting& waiting : waiting_) {
        pending.push_back({waiting.InStatistics ? "" : waiting.Record.StatLine,
                           waiting.InExport ? "" : waiting.Record.ExportLine});
    }
    return pending;
}

void Recorder::TakeUp(const std::vector<PendingRecord>& pending) {
    for (const PendingRecord& record : pending) {
        Waiting waiting{record, record.StatLine.empty() || IsAtEndOf(StatFileName, record.StatLine),
                        record.ExportLine.empty() || IsAtEndOf(StatExportName, record.ExportLine)};
        if (waiting.InStatistics && waiting.InExport) continue;
        if (!waiting.InStatistics) TellOf(record.StatLine);
        waiting_.push_back(std::move(waiting));
    }
}

void Recorder::TellOf(std::string_view statLine) const {
    const auto fields = ParseStatLine(statLine.substr(0, statLine.find('\r')), parts_.Locale);
    if (!fields) return;
    OpenConnection record;
    record.LineName = fields->LineName;
    record.LogIn = fields->LogIn;
    record.End = fields->LogIn + fields->Duration;
    record.BytesReceived = fields->BytesReceived;
    record.BytesTransmitted = fields->BytesTransmitted;
    record.IsRas = true; // perhaps, and the records of adapters are apart anyway
    parts_.MonthSums.Add(record);
}

std::size_t Recorder::RecordsInFile() const {
    const auto unwritten = std::count_if(waiting_.begin(), waiting_.end(),
                                         [](const Waiting& waiting) { return !waiting.InStatistics; });
    return parts_.MonthSums.RecordsMade() - static_cast<std::size_t>(unwritten);
}

// No two records of a line are the same, so the text alone tells.
bool Recorder::IsAtEndOf(std::string_view fileName, std::string_view line) const {
    constexpr std::streamoff searched = 1 << 18; // many times what a run leaves behind
    std::ifstream file(parts_.DataFolder.GetDataPath() / fileName, std::ios::binary | std::ios::ate);
    if (!file) return false;
    const std::streamoff size = file.tellg();
    file.seekg(std::max<std::streamoff>(size - searched, 0));
    const std::string end{std::istreambuf_iterator<char>(file), {}};
    return end.find(line) != std::string::npos;
}

void Recorder::WritePending(Moment moment) {
    const Place places[] = {
        {StatFileName, "", &PendingRecord::StatLine, &Waiting::InStatistics, Files::Flush::Yes},
        {StatExportName, exportHeader, &PendingRecord::ExportLine, &Waiting::InExport, Files::Flush::No}};
    error_ = 0;
    for (const Place& place : places) {
        parts_.Errors.Step("SaveStatsLine", [&] {
            const int error =
                Append(place, moment == Moment::End ? Files::Wait::Briefly : Files::Wait::ForRewrite);
            if (error == 0 || error_ != 0) return;
            error_ = error;
            failedFile_ = place.FileName;
        });
    }
    if (error_ == 0) told_ = 0;
    for (Waiting& waiting : waiting_)
        waiting.Told = true;
    std::erase_if(waiting_, [](const Waiting& waiting) { return waiting.InStatistics && waiting.InExport; });
}

// Returns the system's error number, or 0.
int Recorder::Append(const Place& place, Files::Wait wait) {
    std::string lines;
    bool isNews = false;
    for (const Waiting& waiting : waiting_) {
        if (waiting.*place.Done) continue;
        lines += waiting.Record.*place.Line;
        isNews = isNews || !waiting.Told;
    }
    if (lines.empty()) return 0;
    const std::filesystem::path path = parts_.DataFolder.GetDataPath() / place.FileName;
    const int error = parts_.Files.AppendLines(path, place.Header, lines, StatLineEnd, place.Flush, wait);
    if (error == 0) {
        for (Waiting& waiting : waiting_)
            waiting.*place.Done = true;
    } else if (isNews) {
        LogUnwritten(path, lines, error);
    }
    return error;
}

void Recorder::LogUnwritten(const std::filesystem::path& path, const std::string& lines, int error) const {
    const std::string cause = std::generic_category().message(error);
    parts_.Errors.WriteErrorLog(fmt::format("Not written to {}: {}", path.string(), cause), logGroup);
    for (const std::string_view text : Split(lines, '\n', lines.size())) {
        if (!text.empty()) parts_.Errors.WriteErrorLog(text.substr(0, text.find('\r')), logGroup);
    }
}

void Recorder::TellUnwritten(Moment moment, bool areKept) {
    constexpr int keptText = 231;
    constexpr int lostText = 232;
    const bool isKnown = error_ == told_ || error_ == EAGAIN; // another program seldom holds it for long
    if (error_ == 0 || (isKnown && moment == Moment::Running)) return;
    told_ = error_;
    parts_.Errors.Step("SaveStatsLine", [&] {
        throw FileFailure(error_, parts_.DataFolder.GetDataPath() / failedFile_,
                          areKept ? keptText : lostText);
    });
}

} // namespace korvalin
