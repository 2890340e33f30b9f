#include "data/DataFolder.h"

#include "base/Date.h"
#include "base/FlagGuard.h"
#include "base/Paths.h"
#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "data/FileActions.h"
#include "errors/Errors.h"
#include "errors/FileFailures.h"
#include "lang/Language.h"
#include "lang/MessagePieces.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/MessageBoxes.h"
#include "platform/Shell.h"
#include "settings/Settings.h"

#include <fmt/format.h>

#include <cerrno>
#include <fstream>
#include <system_error>
#include <unordered_set>
#include <utility>
#include <vector>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

bool IsFolder(const fs::path& path) {
    std::error_code ignored;
    return !path.empty() && fs::is_directory(path, ignored);
}

fs::path WithSeparator(const fs::path& folder) {
    return folder / "";
}

// Also true for two ways to the same place, through a link or in another letter case where the file system
// takes it.
bool SameFolder(const fs::path& left, const fs::path& right) {
    std::error_code error;
    const bool same = fs::equivalent(left, right, error);
    return error ? EqualsNoCase(WithSeparator(left).string(), WithSeparator(right).string()) : same;
}

constexpr std::string_view lineEnd = "\r\n";

std::vector<std::string> LinesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::system_error(errno, std::generic_category(), path.string());
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        line.erase(line.find_last_not_of('\r') + 1);
        if (!line.empty()) lines.push_back(line);
    }
    return lines;
}

} // namespace

// ---- which folder

fs::path DataFolder::GetDataPath() {
    const fs::path stored = parts_.Settings.Get(Keys::DataPath);
    if (IsFolder(stored)) return WithSeparator(stored);
    // The decision shows messages, and what they set off (a log line, a timer) may ask for the folder again.
    if (!deciding_ && (!decided_ || !IsFolder(runFolder_))) {
        const FlagGuard deciding(deciding_);
        parts_.Errors.Step("GetDataPath", [&] { DecideFolder(stored); });
        decided_ = true;
    }
    if (!untold_.empty() && HasTexts()) TellSubstitute(std::exchange(untold_, {}));
    return WithSeparator(runFolder_);
}

// Leaves the result in runFolder_, and in the settings when it is to last. A folder that the user has chosen
// and that cannot be reached today stays chosen.
void DataFolder::DecideFolder(const fs::path& stored) {
    const fs::path common = CommonFolder();
    const bool created = common.is_absolute() && CreateFolderPath(common) == 0;
    const bool usable = created && CanCreateFileIn(common);
    const bool programFolderServes = !created && CanCreateFileIn(programFolder_);
    if (!stored.empty() || (!usable && !programFolderServes)) {
        runFolder_ = usable ? common : AnyWritable();
        untold_ = stored.empty() ? common : stored;
        return;
    }
    if (!usable && HasTexts())
        ShowPieces(parts_.MessageBoxes, parts_.Language, {43, common.string(), 44}, MessageIcon::Warning);
    runFolder_ = usable ? common : programFolder_;
    // Stored only after the move: killed or failed in between, the next start finds the old statistics again.
    if (ChangeDataPath(programFolder_, runFolder_, false)) {
        parts_.Settings.Set(Keys::DataPath, runFolder_.string());
    } else if (CanCreateFileIn(programFolder_)) {
        runFolder_ = programFolder_;
    }
}

void DataFolder::TellSubstitute(const fs::path& wanted) {
    ShowPieces(parts_.MessageBoxes, parts_.Language, {43, wanted.string(), 48, runFolder_.string(), 49},
               MessageIcon::Warning);
}

fs::path DataFolder::CommonFolder() const {
    return parts_.Shell.CommonAppData() / ProgramTitle;
}

// A place that the next start finds again, should it need one too.
fs::path DataFolder::AnyWritable() {
    if (CanCreateFileIn(programFolder_)) return programFolder_;
    const fs::path folder = parts_.Shell.SettingsFolder();
    return CreateFolderPath(folder) == 0 ? folder : programFolder_;
}

// A log line may need the folder before the texts are there; a message without words would tell nothing.
bool DataFolder::HasTexts() {
    return !parts_.Language.Lng("modAllgemein", 29).empty();
}

// Also its missing parents. Returns the system's error number, or 0.
int DataFolder::CreateFolderPath(const fs::path& folder) {
    const int error = parts_.Files.CreateFolders(folder);
    return error == 0 && !IsFolder(folder) ? ENOTDIR : error;
}

bool DataFolder::CheckDataFolder(const fs::path& folder) {
    if (folder.empty()) return false;
    int error = 0;
    if (!FileExists(folder)) {
        if (!HasTexts()) return CreateFolderPath(folder) == 0 && CanCreateFileIn(folder);
        const std::string question = folder.string() + "\n\n" + parts_.Language.Lng("modAllgemein", 29);
        const auto answer = parts_.MessageBoxes.Show(question, std::string(ProgramTitle),
                                                     MessageIcon::Question, MessageButtons::YesNo);
        if (answer != MessageAnswer::Yes) return false;
        error = CreateFolderPath(folder);
    }
    const bool isFolder = IsFolder(folder);
    if (isFolder) error = TryFileIn(folder);
    if (isFolder && error == 0) return true;
    isFolder ? Refuse(folder, error, 30, 31) : Refuse(folder, error, 32, 33);
    return false;
}

// The cause tells more than the two texts about the folder, where it is known.
void DataFolder::Refuse(const fs::path& folder, int error, int before, int behind) {
    if (!HasTexts()) return;
    const std::string cause =
        parts_.Errors.InWords(std::system_error(error, std::generic_category(), folder.string()));
    if (cause.empty()) {
        ShowPieces(parts_.MessageBoxes, parts_.Language, {before, folder.string(), behind},
                   MessageIcon::Warning);
    } else {
        parts_.MessageBoxes.Show(cause, std::string(ProgramTitle), MessageIcon::Warning, MessageButtons::Ok);
    }
}

// Returns the system's error number, or 0.
int DataFolder::TryFileIn(const fs::path& folder) {
    fs::path file = folder / "Test.txt";
    // The user may keep a file of that name.
    for (int number = 1; FileExists(file); ++number)
        file = folder / fmt::format("Test{}.txt", number);
    // Not looked for afterwards: another program that tries at the same moment may have removed it.
    if (!parts_.Files.Replace(file, "")) return errno;
    std::error_code ignored;
    fs::remove(file, ignored);
    return 0;
}

// ---- while the chosen folder is away

bool DataFolder::StandsIn() {
    const fs::path stored = parts_.Settings.Get(Keys::DataPath);
    return !stored.empty() && !IsFolder(stored);
}

fs::path DataFolder::JournalFolder() {
    return StandsIn() ? parts_.Shell.SettingsFolder() : GetDataPath();
}

bool DataFolder::BeginToRecord() {
    constexpr int recordsAreKept = 231;
    const fs::path here = GetDataPath();
    const bool isNew = std::exchange(recordsInto_, here) != here;
    parts_.Errors.Step("BeginToRecord", [&] {
        if (!isNew) return;
        if (const int error = TryFileIn(here); error != 0) throw FileFailure(error, here, recordsAreKept);
    });
    const fs::path substitute = parts_.Settings.Get(Keys::SubstituteFolder);
    const bool isThere = IsFolder(substitute);
    const bool fetches = isThere && !SameFolder(substitute, here);
    if (fetches && !parts_.Errors.Step("BeginToRecord", [&] { Fetch(substitute, here); })) return false;
    if (StandsIn()) {
        parts_.Settings.Set(Keys::SubstituteFolder, here.string());
    } else if (isThere) {
        parts_.Settings.Remove(Keys::SubstituteFolder);
    }
    return fetches;
}

void DataFolder::Fetch(const fs::path& from, const fs::path& to) {
    for (const std::string_view name : {StatFileName, StatExportName}) {
        if (!FileExists(from / name)) continue;
        FileExists(to / name) ? JoinStatistics(from / name, to / name)
                              : MoveStatistics(from / name, to / name, false);
    }
}

// ---- moving the statistics

bool DataFolder::ChangeDataPath(const fs::path& oldFolder, const fs::path& newFolder, bool ask) {
    bool refused = false;
    const bool done = parts_.Errors.Step("ChangeDataPath", [&] {
        refused = oldFolder.empty() || newFolder.empty() || !CheckDataFolder(newFolder);
        if (refused) return;
        if (SameFolder(oldFolder, newFolder)) return;
        const fs::path newFile = newFolder / StatFileName;
        const fs::path oldFile = oldFolder / StatFileName;
        if (ask && FileExists(newFile) && UserKeepsNewStatistics()) return;
        if (!FileExists(oldFile) || (ask && !UserMovesStatistics())) return;
        if (!ask && FileExists(newFile)) {
            JoinStatistics(oldFile, newFile);
        } else {
            MoveStatistics(oldFile, newFile, ask);
        }
    });
    // The user has decided about the records there.
    if (done && !refused && ask) parts_.Settings.Remove(Keys::SubstituteFolder);
    return done && !refused;
}

bool DataFolder::UserKeepsNewStatistics() {
    return ShowPieces(parts_.MessageBoxes, parts_.Language, {34, 35}, MessageIcon::Question,
                      MessageButtons::YesNo) == MessageAnswer::Yes;
}

bool DataFolder::UserMovesStatistics() {
    return ShowPieces(parts_.MessageBoxes, parts_.Language, {36, 37, 35, 38}, MessageIcon::Question,
                      MessageButtons::YesNo) == MessageAnswer::Yes;
}

bool DataFolder::Use(const fs::path& folder) {
    Settings& settings = parts_.Settings;
    const std::string before = settings.Get(Keys::DataPath);
    if (!hooks_.LeaveFolder()) return false;
    settings.Set(Keys::DataPath, folder.string());
    if (!settings.Flush()) settings.Set(Keys::DataPath, before);
    return settings.Get(Keys::DataPath) == folder.string(); // a full disk may not even take the old one back
}

// Until the new folder is stored the next start looks into the old one.
void DataFolder::MoveStatistics(const fs::path& oldFile, const fs::path& newFile, bool use) {
    const bool replaces = FileExists(newFile);
    const fs::path aside = FreeBackupName(newFile, parts_.Clock.Now());
    if (replaces) fs::rename(newFile, aside);
    errno = 0;
    const bool copied = parts_.Files.Copy(oldFile, newFile);
    if (!copied || (use && !Use(newFile.parent_path()))) {
        const std::error_code cause(errno != 0 ? errno : EIO, std::generic_category());
        std::error_code ignored;
        if (copied) fs::remove(newFile, ignored);
        if (replaces) fs::rename(aside, newFile, ignored);
        throw fs::filesystem_error("The statistics file could not be copied", oldFile, newFile, cause);
    }
    PutAside(oldFile);
}

// Nobody was asked which of the two is the right one, so none of their records may get lost.
void DataFolder::JoinStatistics(const fs::path& oldFile, const fs::path& newFile) {
    const std::vector<std::string> present = LinesOf(newFile);
    const std::unordered_set<std::string> known(present.begin(), present.end());
    std::string missing;
    for (const std::string& line : LinesOf(oldFile)) {
        if (!known.contains(line)) missing += line + std::string(lineEnd);
    }
    if (!missing.empty()) {
        const int error = parts_.Files.AppendLines(newFile, "", missing, lineEnd, Files::Flush::Yes,
                                                   Files::Wait::ForRewrite);
        if (error != 0) throw std::system_error(error, std::generic_category(), newFile.string());
    }
    PutAside(oldFile);
}

// The statistics have arrived; an old file that cannot be renamed does no harm where it is.
void DataFolder::PutAside(const fs::path& oldFile) {
    parts_.Errors.Step("ChangeDataPath",
                       [&] { fs::rename(oldFile, FreeBackupName(oldFile, parts_.Clock.Now())); });
}

void DataFolder::DeleteStatistics() {
    const int days = parts_.Settings.Get(Keys::DeleteStatistics);
    if (days <= 0) return;
    const Date oldest = DayOf(parts_.Clock.Now()) - days;
    const std::string prefix = fmt::format("{}_", StatFileName);
    std::error_code ignored;
    for (fs::directory_iterator entry(GetDataPath(), ignored), end; entry != end; entry.increment(ignored)) {
        const bool isBackup = entry->path().filename().string().starts_with(prefix);
        const auto modified = FileTime(entry->path());
        if (isBackup && modified && *modified < oldest) fs::remove(entry->path(), ignored);
    }
}

} // namespace korvalin
