#include "stats/StatFile.h"

#include "base/Locale.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "errors/Paths.h"
#include "platform/Clock.h"
#include "platform/Events.h"
#include "stats/Aliases.h"
#include "stats/LineReader.h"
#include "stats/MergeRecords.h"
#include "stats/SortStats.h"
#include "stats/StatFileName.h"
#include "stats/StatLine.h"
#include "traffic/LineRecord.h"

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

void SortByLine(std::span<StatRecord> records, const Locale& locale) {
    SortStats(records, {"LineName", true}, {"LogIn", true}, locale);
}

} // namespace

bool LoadReport::NeedsRepair() const {
    return Dropped > 0 || Merged > toleratedMerges;
}

StatFile::StatFile(DataFolderOf dataFolder, Files& files, Events& events, Clock& clock, Errors& errors,
                   const LineState& lines, Aliases& aliases, const Locale& locale)
    : dataFolder_(std::move(dataFolder)),
      files_(files),
      events_(events),
      clock_(clock),
      errors_(errors),
      lines_(lines),
      aliases_(aliases),
      locale_(locale) {}

fs::path StatFile::StatFilePath() const {
    return dataFolder_() / StatFileName;
}

std::int32_t StatFile::LoadStatFile(StatRecords& records, bool repair) {
    constexpr std::string_view procName = "LoadStatFile";
    records = StatRecords();
    report_ = LoadReport();
    const fs::path oldFile = dataFolder_() / OldStatFileName;
    if (!FileExists(StatFilePath()) && FileExists(oldFile)) errors_.Step(procName, [&] { Convert(oldFile); });
    bool whole = true;
    // Held from the first line to the rewrite: what another program appends in between would be lost.
    std::unique_ptr<FileLock> lock;
    if (FileExists(StatFilePath())) {
        if (repair) lock = files_.Hold(StatFilePath());
        whole = errors_.Step(procName, [&] { Read(records); });
    }
    if (!repair && lines_.AnyLineConnected) errors_.Step(procName, [&] { AddRunning(records); });
    errors_.Step(procName, [&] { Tidy(records); });
    // A file without any record is probably none of ours.
    const bool worthIt = report_.NeedsRepair() && !records.List.empty();
    if (lock && whole && worthIt) errors_.Step(procName, [&] { Repair(records); });
    return static_cast<std::int32_t>(records.List.size());
}

// The older file stays where it is.
void StatFile::Convert(const fs::path& oldFile) {
    std::string content;
    ReadLines(oldFile, [&](std::string_view line) {
        const std::string text = DecodeLine(line);
        if (const auto fields = ParseOldStatLine(text, locale_)) AppendStatLine(content, *fields);
    });
    if (!files_.Replace(StatFilePath(), content))
        throw NumberedError(0, "The older statistics could not be converted: " + oldFile.string());
    report_.Converted = true;
}

// Sorts part by part while the records are in the cache: the sort of all of them then moves whole runs, and
// keeps windows waiting for a shorter time.
void StatFile::Read(StatRecords& records) {
    const fs::path path = StatFilePath();
    std::error_code ignored;
    if (const auto size = fs::file_size(path, ignored); !ignored)
        records.List.reserve(std::min(size / shortLineBytes, mostForeseen));
    linesRead_ = 0;
    std::size_t sorted = 0;
    bytesRead_ = ReadLines(path, [&](std::string_view line) {
        TakeLine(line, records);
        if (++linesRead_ % linesPerPause == 0) events_.ProcessPending();
        if (records.List.size() - sorted < recordsPerSort) return;
        SortByLine(std::span(records.List).subspan(sorted), locale_);
        sorted = records.List.size();
    });
}

void StatFile::TakeLine(std::string_view line, StatRecords& records) {
    if (!IsValidUtf8(line)) line = decoded_ = FromWindows1252(line);
    const auto fields = ParseStatLine(line, locale_);
    if (!fields) {
        ++report_.Dropped;
        return;
    }
    records.List.push_back(RecordOf(*fields, records.Texts));
    records.List.back().FileIndex = static_cast<std::int32_t>(records.List.size());
}

void StatFile::AddRunning(StatRecords& records) {
    const TableFromOne<LineRecord>& open = lines_.PreviousLineTable;
    for (std::size_t i = 1; i <= lines_.LineCount && i <= open.Size(); ++i) {
        const LineRecord& line = open(i);
        if (!line.Connected) continue;
        records.List.push_back(RecordOf({line.EntryName, line.LogIn, line.Duration, line.BytesTransmitted,
                                         line.BytesReceived, InfoRunning, line.User},
                                        records.Texts));
    }
}

void StatFile::Tidy(StatRecords& records) {
    SortByLine(records.List, locale_);
    report_.Merged = MergeDuplicates(records.List);
    aliases_.FillAlias(records);
    for (StatRecord& record : records.List)
        record.LogOut = record.End();
}

void StatFile::Repair(const StatRecords& records) {
    const fs::path path = StatFilePath();
    // A program that knows nothing of the lock has written: the next start may repair.
    if (fs::file_size(path) != bytesRead_) return;
    const fs::path backup = FreeBackupName(path, clock_.Now(), '_');
    const bool replaced = files_.ReplaceKeeping(path, backup, [&](const Files::Sink& sink) {
        std::string part;
        for (const StatRecord& record : records.List) {
            AppendStatLine(part, FieldsOf(record));
            if (part.size() < writeBytes) continue;
            if (!sink(part)) return false;
            part.clear();
        }
        return sink(part);
    });
    if (!replaced) throw NumberedError(0, "The statistics file could not be repaired: " + path.string());
    report_.Backup = backup;
}

} // namespace korvalin
