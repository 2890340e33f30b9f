#include "stats/StatFile.h"

#include "base/Locale.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "data/DataFolder.h"
#include "errors/Errors.h"
#include "platform/Clock.h"
#include "platform/Events.h"
#include "stats/Aliases.h"
#include "stats/LineReader.h"
#include "stats/MergeRecords.h"
#include "stats/OpenConnections.h"
#include "stats/SortStats.h"
#include "stats/StatLine.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <span>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t toleratedMerges = 25;   // more are worth a rewrite
constexpr std::size_t linesPerPause = 1000;   // between two looks at the window's events
constexpr std::size_t recordsPerSort = 4096;  // fit the cache
constexpr std::uintmax_t shortLineBytes = 64; // most lines are longer: room for them is asked for at once
constexpr std::uintmax_t mostForeseen = 10'000'000;
constexpr std::size_t writeBytes = 256 * 1024;

StatRecord RecordOf(const StatFields& fields, TextPool& texts) {
    StatRecord record;
    record.LineName = texts.Intern(fields.LineName);
    record.LogIn = fields.LogIn;
    record.Duration = fields.Duration;
    record.BytesReceived = fields.BytesReceived;
    record.BytesTransmitted = fields.BytesTransmitted;
    record.Info = texts.Store(fields.Info);
    record.User = texts.Intern(fields.User);
    return record;
}

// Thrown through the reader when the user wants no more of it.
struct LoadCancelled {};

std::uintmax_t SizeOf(const fs::path& path) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path, error);
    return error ? 0 : size;
}

// Where the last bytes begin that a mark remembers.
std::uintmax_t MarkBegin(std::uintmax_t end) {
    constexpr std::uintmax_t markBytes = 256;
    return end - std::min(end, markBytes);
}

// Bytes [begin, end) of a file; fewer when there are not so many.
std::string ReadPart(const fs::path& path, std::uintmax_t begin, std::uintmax_t end) {
    std::ifstream file(path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(begin));
    std::string part(end - begin, '\0');
    file.read(part.data(), static_cast<std::streamsize>(part.size()));
    part.resize(static_cast<std::size_t>(file.gcount()));
    return part;
}

// What was appended since, from its first line on; nullopt when the file is another one by now.
std::optional<std::string> AppendedSince(const FileMark& mark, const fs::path& path) {
    const std::uintmax_t size = SizeOf(path);
    const std::string there = ReadPart(path, mark.Bytes - mark.LastBytes.size(), mark.Bytes);
    if (size < mark.Bytes || there != mark.LastBytes) return std::nullopt;
    std::string appended = ReadPart(path, mark.Bytes, size);
    appended.erase(0, appended.find_first_not_of("\r\n"));
    return appended;
}

// What cannot be looked into seems to have no file.
void CheckFolder(const fs::path& folder) {
    std::error_code error;
    if (!fs::exists(folder / StatFileName, error) && error) throw std::system_error(error, folder.string());
}

LoadReport::Hindrance HindranceOf(int error) {
    switch (error) {
    case ENOSPC:
    case EDQUOT: return LoadReport::Hindrance::DiskFull;
    case EROFS: return LoadReport::Hindrance::ReadOnly;
    default: return LoadReport::Hindrance::NotWritable;
    }
}

void SortByLine(std::span<StatRecord> records, const Locale& locale) {
    SortStats(records, {"LineName", true}, {"LogIn", true}, locale);
}

} // namespace

bool FollowOpen(StatRecord& record, const std::vector<OpenConnection>& open) {
    if (!IsRunning(record)) return false;
    const auto now = std::find_if(open.begin(), open.end(), [&](const OpenConnection& connection) {
        return EqualsNoCase(connection.LineName, record.LineName);
    });
    if (now == open.end()) return false;
    const StatRecord before = record;
    record.Duration = std::max(now->End - record.LogIn, 0.0);
    record.BytesReceived = now->BytesReceived;
    record.BytesTransmitted = now->BytesTransmitted;
    record.LogOut = record.End();
    return record.Duration != before.Duration || record.Volume() != before.Volume();
}

bool LoadReport::NeedsRepair() const {
    return Dropped > 0 || Merged > toleratedMerges;
}

fs::path StatFile::StatFilePath() const {
    return parts_.DataFolder.GetDataPath() / StatFileName;
}

std::int32_t StatFile::LoadStatFile(StatRecords& records, bool repair, const Progress& progress) {
    constexpr std::string_view procName = "LoadStatFile";
    records = StatRecords();
    report_ = LoadReport();
    const fs::path oldFile = parts_.DataFolder.GetDataPath() / OldStatFileName;
    bool whole = parts_.Errors.Step(procName, [&] { CheckFolder(parts_.DataFolder.GetDataPath()); });
    if (!FileExists(StatFilePath()) && FileExists(oldFile))
        parts_.Errors.Step(procName, [&] { Convert(oldFile); });
    // Held from the first line to the rewrite: what another program appends in between would be lost.
    std::unique_ptr<FileLock> lock;
    try {
        if (FileExists(StatFilePath())) {
            if (repair) lock = parts_.Files.Hold(StatFilePath());
            whole = parts_.Errors.Step(procName, [&] { Read(records, progress); });
        }
    } catch (const LoadCancelled&) {
        records = StatRecords();
        return 0;
    }
    std::vector<OpenConnection> open;
    if (!repair) parts_.Errors.Step(procName, [&] { open = parts_.OpenConnections.Now(); });
    parts_.Errors.Step(procName, [&] { Tidy(records, open); });
    if (repair && report_.NeedsRepair()) {
        using Hindrance = LoadReport::Hindrance;
        if (!lock) report_.NotRewritten = WhyNotHeld();
        if (!whole) report_.NotRewritten = Hindrance::Unreadable;
        if (records.List.empty()) report_.NotRewritten = Hindrance::NoRecords; // probably no file of ours
        if (report_.NotRewritten == Hindrance::None) parts_.Errors.Step(procName, [&] { Repair(records); });
    }
    return static_cast<std::int32_t>(records.List.size());
}

// Nothing is appended: only the system's answer counts.
LoadReport::Hindrance StatFile::WhyNotHeld() {
    const int error =
        parts_.Files.AppendLines(StatFilePath(), {}, {}, {}, Files::Flush::No, Files::Wait::Briefly);
    if (error == 0 || error == EAGAIN) return LoadReport::Hindrance::Held;
    return error == EROFS ? LoadReport::Hindrance::ReadOnly : LoadReport::Hindrance::NotOpened;
}

// The older file stays where it is.
void StatFile::Convert(const fs::path& oldFile) {
    std::string content;
    ReadLines(oldFile, [&](std::string_view line) {
        const std::string text = DecodeLine(line);
        if (const auto fields = ParseOldStatLine(text, parts_.Locale)) WriteStatRecord(content, *fields);
    });
    if (!parts_.Files.Replace(StatFilePath(), content))
        throw std::system_error(errno, std::generic_category(), StatFilePath().string());
    report_.Converted = true;
}

// Sorts part by part while the records are in the cache: the sort of all of them then moves whole runs, and
// keeps windows waiting for a shorter time.
void StatFile::Read(StatRecords& records, const Progress& progress) {
    const fs::path path = StatFilePath();
    const std::uintmax_t size = SizeOf(path);
    records.List.reserve(std::min(size / shortLineBytes, mostForeseen));
    linesRead_ = 0;
    std::size_t sorted = 0;
    std::uintmax_t seen = 0;
    records.ReadTo.Bytes = ReadLines(path, [&](std::string_view line) {
        TakeLine(line, records);
        seen += line.size() + StatLineEnd.size();
        if (++linesRead_ % linesPerPause == 0) Pause(progress, seen, size);
        if (records.List.size() - sorted < recordsPerSort) return;
        SortByLine(std::span(records.List).subspan(sorted), parts_.Locale);
        sorted = records.List.size();
    });
    records.ReadTo.LastBytes = ReadPart(path, MarkBegin(records.ReadTo.Bytes), records.ReadTo.Bytes);
}

void StatFile::Pause(const Progress& progress, std::uintmax_t seen, std::uintmax_t size) {
    parts_.Events.ProcessPending();
    if (!progress || size == 0) return;
    const double fraction = static_cast<double>(seen) / static_cast<double>(size);
    if (!progress(std::min(fraction, 1.0))) throw LoadCancelled();
}

void StatFile::TakeLine(std::string_view line, StatRecords& records) {
    if (!IsValidUtf8(line)) line = decoded_ = FromWindows1252(line);
    const auto fields = ParseStatLine(line, parts_.Locale);
    if (!fields) {
        ++report_.Dropped;
        return;
    }
    records.List.push_back(RecordOf(*fields, records.Texts));
    records.List.back().FileIndex = static_cast<std::int32_t>(records.List.size());
}

void StatFile::AddRunning(StatRecords& records, const std::vector<OpenConnection>& open, bool dialUp) {
    for (const OpenConnection& connection : open) {
        if (connection.IsRas != dialUp) continue;
        records.List.push_back(
            RecordOf({connection.LineName, connection.LogIn, connection.End - connection.LogIn,
                      connection.BytesTransmitted, connection.BytesReceived, InfoRunning, connection.User},
                     records.Texts));
    }
}

// A dial-up line that is open may have a record from an earlier run; an adapter's open part has none.
void StatFile::Tidy(StatRecords& records, const std::vector<OpenConnection>& open) {
    AddRunning(records, open, true);
    SortByLine(records.List, parts_.Locale);
    report_.Merged = MergeDuplicates(records.List);
    const std::size_t merged = records.List.size();
    AddRunning(records, open, false);
    if (records.List.size() > merged) SortByLine(records.List, parts_.Locale);
    parts_.Aliases.FillAlias(records);
    for (StatRecord& record : records.List)
        record.LogOut = record.End();
}

void StatFile::Repair(const StatRecords& records) {
    // A program that knows nothing of the lock has written: the next start may repair.
    if (fs::file_size(StatFilePath()) != records.ReadTo.Bytes) {
        report_.NotRewritten = LoadReport::Hindrance::Changed;
        return;
    }
    FileMark written;
    if (Rewrite(records, std::vector<bool>(records.List.size()), {}, written)) return;
    report_.Error = errno;
    report_.NotRewritten = HindranceOf(report_.Error);
}

// Writes the records, all but those left out, and what another load has not seen yet behind them.
bool StatFile::Rewrite(const StatRecords& records, const std::vector<bool>& leftOut,
                       std::string_view appended, FileMark& written, const Progress& progress) {
    const fs::path path = StatFilePath();
    const fs::path backup = FreeBackupName(path, parts_.Clock.Now(), '_');
    const bool replaced = parts_.Files.ReplaceKeeping(path, backup, [&](const Files::Sink& sink) {
        std::string part;
        const auto write = [&] {
            written.Bytes += part.size();
            if (!part.empty()) written.LastBytes = part.substr(MarkBegin(part.size()));
            const bool done = sink(part);
            part.clear();
            return done;
        };
        for (std::size_t i = 0; i < records.List.size(); ++i) {
            if (leftOut[i]) continue;
            WriteStatRecord(part, FieldsOf(records.List[i]));
            if (part.size() < writeBytes) continue;
            if (!write()) return false;
            parts_.Events.ProcessPending();
            if (progress && !progress(static_cast<double>(i) / static_cast<double>(records.List.size())))
                return false;
        }
        return write() && sink(appended);
    });
    if (replaced) report_.Backup = backup;
    return replaced;
}

StatFile::Deletion StatFile::DeleteRecords(StatRecords& records, const std::vector<std::uint32_t>& deleted,
                                           const Progress& progress) {
    const auto lock = parts_.Files.Hold(StatFilePath());
    if (!lock) return FileExists(StatFilePath()) ? Deletion::Held : Deletion::Changed;
    const auto appended = AppendedSince(records.ReadTo, StatFilePath());
    if (!appended) return Deletion::Changed;
    std::vector<bool> leftOut(records.List.size());
    for (std::size_t i = 0; i < records.List.size(); ++i)
        leftOut[i] = records.List[i].FileIndex == 0;
    for (const std::uint32_t i : deleted)
        leftOut.at(i) = true;
    FileMark written;
    bool cancelled = false;
    const Progress watched = [&](double fraction) {
        cancelled = progress && !progress(fraction);
        return !cancelled;
    };
    if (!Rewrite(records, leftOut, *appended, written, watched))
        return cancelled ? Deletion::Cancelled : Deletion::Failed;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < records.List.size(); ++i) {
        if (!leftOut[i] || records.List[i].FileIndex == 0) records.List[kept++] = records.List[i];
    }
    records.List.resize(kept);
    records.ReadTo = std::move(written);
    return Deletion::Done;
}

// One that is missing is made, as only a file that is there can be held. But first an older release's file
// becomes this one: where that fails, a new file would hide it for good.
std::unique_ptr<FileLock> StatFile::HoldOrMake() {
    const fs::path path = StatFilePath();
    StatRecords converted;
    if (!FileExists(path)) LoadStatFile(converted, false);
    if (!FileExists(path) && !FileExists(path.parent_path() / OldStatFileName))
        static_cast<void>(parts_.Files.AppendLines(path, {}, {}, {}, Files::Flush::No, Files::Wait::Briefly));
    return parts_.Files.Hold(path);
}

LoadReport::Hindrance StatFile::AddRecords(const MakeRecords& make) {
    using Hindrance = LoadReport::Hindrance;
    const fs::path path = StatFilePath();
    const auto lock = HoldOrMake();
    if (!lock) return FileExists(path) ? WhyNotHeld() : Hindrance::NotWritable;
    StatRecords there;
    LoadStatFile(there, false);
    const std::uintmax_t bytes = there.ReadTo.Bytes;
    if (bytes != SizeOf(path)) return Hindrance::Unreadable;
    if (bytes > 0 && report_.Dropped == linesRead_) return Hindrance::NoRecords;
    std::string lines = bytes > 0 && there.ReadTo.LastBytes.back() != '\n' ? std::string(StatLineEnd) : "";
    const std::vector<StatFields> made = make(there);
    if (made.empty()) return Hindrance::None;
    for (const StatFields& fields : made)
        WriteStatRecord(lines, fields);
    const bool done = bytes == 0 ? parts_.Files.Replace(path, lines) : Extend(bytes, lines);
    return done ? Hindrance::None : HindranceOf(errno);
}

// What is there stays byte for byte, so that windows which have loaded it find their place again.
bool StatFile::Extend(std::uintmax_t bytes, std::string_view lines) {
    const fs::path path = StatFilePath();
    const fs::path backup = FreeBackupName(path, parts_.Clock.Now(), '_');
    const bool replaced = parts_.Files.ReplaceKeeping(path, backup, [&](const Files::Sink& sink) {
        for (std::uintmax_t begin = 0; begin < bytes; begin += writeBytes) {
            const std::uintmax_t end = std::min<std::uintmax_t>(begin + writeBytes, bytes);
            const std::string part = ReadPart(path, begin, end);
            if (part.size() != end - begin || !sink(part)) return false;
        }
        return SizeOf(path) == bytes && sink(lines);
    });
    if (replaced) report_.Backup = backup;
    return replaced;
}

std::vector<OpenConnection> StatFile::Open() const {
    return parts_.OpenConnections.Now();
}

std::string StatFile::Fingerprint(const std::vector<OpenConnection>& open) const {
    const fs::path path = StatFilePath();
    std::error_code error;
    const auto time = fs::last_write_time(path, error);
    std::string print = fmt::format("{} {}", SizeOf(path), error ? 0 : time.time_since_epoch().count());
    for (const OpenConnection& connection : open)
        print += fmt::format("\n{} {}", connection.LineName, connection.LogIn);
    return print;
}

} // namespace korvalin
