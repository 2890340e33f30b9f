#include "platform/linux/store/SqliteJournal.h"

#include "platform/linux/store/DatabaseFiles.h"
#include "platform/linux/store/JournalDatabase.h"
#include "platform/linux/store/JournalNotes.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <random>
#include <sys/stat.h>
#include <utility>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

// How often is looked again when another program was writing.
constexpr int attempts = 3;

// Without links on the way, which SQLite then refuses: the user may have put one there.
fs::path FileIn(const fs::path& folder) {
    std::error_code error;
    const fs::path real = fs::canonical(folder, error);
    return (error ? folder : real) / JournalFileName;
}

bool IsFile(const fs::path& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool IsThere(const fs::path& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

fs::path NameAside(const fs::path& path) {
    for (int number = 1;; ++number) {
        fs::path aside = path.string() + "_" + std::to_string(number);
        if (!IsThere(aside)) return aside;
    }
}

// Makes the file if it is missing. Whatever else has the name of one of its parts gives way.
bool MakeFile(const fs::path& file) {
    for (const char* part : DatabaseParts) {
        const fs::path path = file.string() + part;
        struct stat status {};
        if (lstat(path.c_str(), &status) != 0) continue;
        if (!S_ISREG(status.st_mode)) {
            if (std::rename(path.c_str(), NameAside(path).c_str()) != 0) return false;
        } else {
            MakePrivate(path);
        }
    }
    return CreateDatabaseFile(file) == 0;
}

std::uint64_t DrawId() {
    std::random_device random;
    return (std::uint64_t{random()} << 32) | random();
}

bool HasOpenConnection(const JournalPicture& picture) {
    return std::ranges::any_of(picture.Entries, [](const JournalEntry& e) { return e.Open.has_value(); });
}

} // namespace

/// A journal that is open to be written.
struct SqliteJournal::OpenJournal {
    OpenJournal(fs::path file, std::string boot, const std::vector<fs::path>& notesFolders)
        : File(std::move(file)), Stamp{std::move(boot), DrawId(), 0}, Notes(notesFolders, Stamp.Id) {}

    fs::path File;
    std::optional<FileIdentity> Identity;
    JournalDatabase Database;
    JournalStamp Stamp;
    JournalNotes Notes;
};

SqliteJournal::SqliteJournal(std::string machine, std::string boot, std::filesystem::path notesFolder)
    : machine_(std::move(machine)), boot_(std::move(boot)), notesFolder_(std::move(notesFolder)) {}

SqliteJournal::~SqliteJournal() = default;

std::vector<fs::path> SqliteJournal::NotesFolders(const fs::path& file) const {
    if (notesFolder_.empty()) return {file.parent_path()};
    return {notesFolder_, file.parent_path()};
}

// Null when the folder does not take the file.
std::unique_ptr<SqliteJournal::OpenJournal> SqliteJournal::Open(const fs::path& file) const {
    for (int attempt = 0; attempt < 2 && MakeFile(file); ++attempt) {
        auto journal = std::make_unique<OpenJournal>(file, boot_, NotesFolders(file));
        const int code = journal->Database.Open(file, JournalDatabase::Source::File);
        journal->Identity = IdentityOf(file);
        if (code == SQLITE_OK) return journal;
        // Moved before it is closed: closing would write its log into it.
        if (!SqliteDatabase::IsDamage(code) || !RenameDatabase(file, NameAside(file))) break;
    }
    return nullptr;
}

JournalFound SqliteJournal::Read(JournalDatabase& database, const fs::path& file) const {
    JournalFound found;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        JournalStamp stamp;
        if (database.Read(machine_, found.Picture, stamp) != SQLITE_OK) return {.IsUnreadable = true};
        found.KnowsMachine = stamp.Generation > 0;
        found.SameBoot = found.KnowsMachine && stamp.Boot == boot_;
        const JournalNotes notes(NotesFolders(file), stamp.Id);
        if (notes.Apply(stamp, found.Picture) == JournalNotes::Applied::Done) break;
    }
    return found;
}

JournalFound SqliteJournal::Load(const fs::path& folder) {
    DropLost();
    const fs::path file = FileIn(folder);
    if (!IsThere(file)) return {};
    std::unique_ptr<OpenJournal> journal = Open(file);
    if (!journal) return Look(folder);
    JournalFound found = Read(journal->Database, file);
    if (!open_) open_ = std::move(journal);
    return found;
}

JournalFound SqliteJournal::Look(const fs::path& folder) {
    DropLost();
    const fs::path file = FileIn(folder);
    // Without both of them SQLite would make what is missing.
    const auto isShared = [&] { return IsFile(file.string() + "-wal") && IsFile(file.string() + "-shm"); };
    for (int attempt = 0; attempt < attempts && IsFile(file); ++attempt) {
        using Source = JournalDatabase::Source;
        JournalDatabase database;
        const int code = database.Open(file, isShared() ? Source::SharedFile : Source::ClosedFile);
        if (code == SQLITE_OK) return Read(database, file);
    }
    return {.IsUnreadable = IsThere(file)};
}

int SqliteJournal::Write(OpenJournal& journal, const JournalPicture& picture, Durability durability) const {
    JournalStamp earlier;
    int code = SQLITE_OK;
    if (journal.Stamp.Generation == 0) code = journal.Database.ReadStamp(machine_, earlier);
    if (code == SQLITE_OK) code = journal.Database.Replace(machine_, picture, journal.Stamp, durability);
    if (code != SQLITE_OK) return code;
    if (earlier.Generation > 0) JournalNotes(NotesFolders(journal.File), earlier.Id).Remove();
    if (!HasOpenConnection(picture)) journal.Notes.Remove();
    return code;
}

bool SqliteJournal::Save(const fs::path& folder, const JournalPicture& picture, Durability durability) {
    DropLost();
    const fs::path file = FileIn(folder);
    if (open_ && open_->File == file) {
        if (left_ && Leave(*left_, *open_)) left_.reset();
        const int code = Write(*open_, picture, durability);
        if (!SqliteDatabase::IsDamage(code) || !RenameDatabase(file, NameAside(file)))
            return code == SQLITE_OK;
        DropLost();
    }
    std::unique_ptr<OpenJournal> next = Open(file);
    // On the medium in any case: the one before it is about to go.
    if (!next || Write(*next, picture, Durability::Medium) != SQLITE_OK) return false;
    if (open_ && !Leave(*open_, *next)) left_ = std::move(open_);
    open_ = std::move(next);
    return true;
}

// A file that was renamed or removed goes on for its writer alone. It is closed before the file that has its
// name now is opened: closing it later would free that one's locks.
void SqliteJournal::DropLost() {
    if (!open_ || IdentityOf(open_->File) == open_->Identity) return;
    open_->Notes.Remove();
    open_.reset();
}

// What other machines have written stays. Both are one file where a folder has two names.
bool SqliteJournal::Leave(OpenJournal& journal, const OpenJournal& next) const {
    journal.Notes.Remove();
    if (journal.Identity == next.Identity) return true;
    bool othersAreLeft = true;
    if (journal.Database.Forget(machine_, othersAreLeft) != SQLITE_OK) return false;
    if (!othersAreLeft) RemoveDatabase(journal.File);
    return true;
}

void SqliteJournal::Note(const std::vector<JournalNote>& notes) {
    if (open_ && open_->Stamp.Generation > 0 && !notes.empty()) open_->Notes.Write(open_->Stamp, notes);
}

} // namespace korvalin
