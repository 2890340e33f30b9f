#include "platform/linux/store/SqliteRegistry.h"

#include "base/ProgramTitle.h"
#include "platform/Clock.h"
#include "platform/linux/files/Descriptor.h"
#include "platform/linux/files/PosixFiles.h"
#include "platform/linux/store/DatabaseFiles.h"

#include <sqlite3.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <utility>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

// How long a call waits for another instance's write.
constexpr int busyMilliseconds = 3000;

// In the file's header ("KrvR"): tells a settings store from any other database.
constexpr std::int64_t applicationId = 0x4B727652;

constexpr const char* fileSettings = "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL";

// Paths and names are looked up by their lower-case form. No key is ever deleted.
constexpr const char* tables = R"(
    CREATE TABLE RegistryKeys (LowerPath TEXT NOT NULL PRIMARY KEY, Path TEXT NOT NULL) WITHOUT ROWID;
    CREATE TABLE RegistryValues (LowerPath TEXT NOT NULL, LowerName TEXT NOT NULL, Name TEXT NOT NULL,
                                 Content TEXT NOT NULL, PRIMARY KEY (LowerPath, LowerName)) WITHOUT ROWID)";

bool IsRunKey(std::string_view keyPath) {
    return EqualsNoCase(keyPath, RunKeyPath);
}

bool IsProgramValue(std::string_view valueName) {
    return EqualsNoCase(valueName, ProgramTitle);
}

// Creates what is missing, the folders for the user alone (0700) and an empty file (0600), and takes other
// users' permissions from what is there. 0 or the system's error number.
int MakeFile(const fs::path& file) {
    if (const int error = PosixFiles().CreateFolders(file.parent_path()); error != 0) return error;
    if (const int error = CreateDatabaseFile(file); error != 0) return error;
    for (const char* part : DatabaseParts)
        MakePrivate(file.string() + part);
    return 0;
}

// While it is held no other instance opens the store or moves it aside. Where folders cannot be locked (some
// network file systems) it holds nothing.
Descriptor LockFolderOf(const fs::path& file) {
    Descriptor folder(open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    while (folder && flock(folder.Get(), LOCK_EX) != 0) {
        if (errno != EINTR) return {};
    }
    return folder;
}

} // namespace

/// One open database with its prepared statements.
struct SqliteRegistry::Store {
    enum class Source { File, ReadOnlyFile, Memory };

    /// Makes the tables when the database is empty, and checks its structure; SQLite's primary result code.
    [[nodiscard]] int Open(const fs::path& file, Source source);

    // The connection comes first, so that it is closed after its statements.
    SqliteDatabase Database;
    SqliteDatabase::Statement AddKey, FindValue, PutValue, RemoveValue, ListNames;
    Source From = Source::Memory;
    std::optional<FileIdentity> Identity; ///< of the file to be written

  private:
    int Connect(const fs::path& file);
    int Prepare();
    int FoldNames();
};

int SqliteRegistry::Store::Connect(const fs::path& file) {
    switch (From) {
    case Source::Memory: return Database.OpenInMemory();
    case Source::ReadOnlyFile:
        // immutable: a folder that takes no files has no room for the locks' shared memory either
        return Database.OpenFile(file, SQLITE_OPEN_READONLY, busyMilliseconds, "immutable=1");
    case Source::File: break;
    }
    const int code = Database.OpenFile(file, SQLITE_OPEN_READWRITE, busyMilliseconds);
    return code == SQLITE_OK ? Database.Execute(fileSettings) : code;
}

int SqliteRegistry::Store::Prepare() {
    return Database.Prepare(
        {{"INSERT INTO RegistryKeys VALUES (?1, ?2) ON CONFLICT DO NOTHING", AddKey},
         {"SELECT Content FROM RegistryValues WHERE LowerPath = ?1 AND LowerName = ?2", FindValue},
         // only below a key that is there; the name stays as it was first written
         {"INSERT INTO RegistryValues SELECT LowerPath, ?2, ?3, ?4 FROM RegistryKeys WHERE LowerPath = ?1 "
          "ON CONFLICT (LowerPath, LowerName) DO UPDATE SET Content = excluded.Content",
          PutValue},
         {"DELETE FROM RegistryValues WHERE LowerPath = ?1 AND LowerName = ?2", RemoveValue},
         {"SELECT Name FROM RegistryValues WHERE LowerPath = ?1 ORDER BY LowerName", ListNames}});
}

// Names of alphabets whose letters an earlier release left as they are would not be found.
int SqliteRegistry::Store::FoldNames() {
    struct Renamed {
        std::string Path, Lower, Name;
    };
    std::vector<Renamed> others;
    SqliteDatabase::Statement find;
    SqliteDatabase::Statement rename;
    int code = Database.Prepare(
        {{"SELECT LowerPath, LowerName, Name FROM RegistryValues WHERE LowerName GLOB '*[^ -~]*'", find},
         {"UPDATE OR IGNORE RegistryValues SET LowerName = ?3 WHERE LowerPath = ?1 AND LowerName = ?2",
          rename}});
    if (code != SQLITE_OK) return code;
    code = SqliteDatabase::Run(find, {}, [&](const SqliteDatabase::Row& row) {
        if (ToLower(row.Text(2)) != row.Text(1))
            others.push_back({std::string(row.Text(0)), std::string(row.Text(1)), ToLower(row.Text(2))});
    });
    for (const Renamed& name : others) {
        if (code == SQLITE_OK) code = SqliteDatabase::Run(rename, {name.Path, name.Lower, name.Name});
    }
    return code;
}

int SqliteRegistry::Store::Open(const fs::path& file, Source source) {
    using Access = SqliteDatabase::Access;
    From = source;
    int code = Connect(file);
    const Access access = source == Source::ReadOnlyFile ? Access::Read : Access::Write;
    if (code == SQLITE_OK) code = Database.EnsureTables(applicationId, tables, access);
    if (code == SQLITE_OK) code = Database.CheckStructure();
    if (code == SQLITE_OK) code = Prepare();
    if (code == SQLITE_OK && source == Source::File) code = FoldNames();
    if (code == SQLITE_OK && source == Source::File) Identity = IdentityOf(file);
    return code;
}

SqliteRegistry::SqliteRegistry(fs::path file, AutostartFile autostart, Clock& clock)
    : file_(std::move(file)), autostart_(std::move(autostart)), clock_(clock) {
    OpenAny();
}

SqliteRegistry::~SqliteRegistry() = default;

// ---- which file

void SqliteRegistry::OpenAny() {
    if (OpenFile()) return;
    const std::pair<Store::Source, const char*> others[] = {
        {Store::Source::ReadOnlyFile, "The settings store can only be read"},
        {Store::Source::Memory, "Settings are kept in memory for this run"}};
    for (const auto& [source, note] : others) {
        auto store = std::make_unique<Store>();
        if (store->Open(file_, source) != SQLITE_OK) continue;
        store_ = std::move(store);
        return Note(note);
    }
}

// Opens the file of the store's name, a new one if need be. False leaves the present store in use.
bool SqliteRegistry::OpenFile() {
    int error = MakeFile(file_);
    const Descriptor lock = LockFolderOf(file_);
    if (error == 0) error = MakeFile(file_); // it may have been moved aside before the lock was given
    if (error != 0) {
        Note("The settings store " + file_.string() + " could not be made: " + std::strerror(error));
        return false;
    }
    std::unique_ptr<Store> store;
    const int code = OpenOrMoveAside(store);
    if (code != SQLITE_OK) {
        Note("The settings store " + file_.string() + " could not be opened: " + sqlite3_errstr(code));
        return false;
    }
    store_ = std::move(store);
    fileLost_ = false;
    return true;
}

int SqliteRegistry::OpenOrMoveAside(std::unique_ptr<Store>& store) {
    store = std::make_unique<Store>();
    const int code = store->Open(file_, Store::Source::File);
    // Moved before it is closed: closing would write its log into it.
    if (!SqliteDatabase::IsDamage(code) || !MoveAside()) return code;
    if (MakeFile(file_) != 0) return SQLITE_CANTOPEN;
    store = std::make_unique<Store>();
    return store->Open(file_, Store::Source::File);
}

// Renames the file and its log to "<name>.damaged_yyyymmdd-hhmmss"; false when the folder does not allow it.
bool SqliteRegistry::MoveAside() {
    const std::string first = file_.string() + ".damaged" + FormatDateSuffix(clock_.Now());
    std::string aside = first;
    struct stat status {};
    for (int number = 2; lstat(aside.c_str(), &status) == 0; ++number)
        aside = first + "-" + std::to_string(number);
    if (!RenameDatabase(file_, aside)) return false;
    Note("The settings store was damaged and moved aside: " + aside);
    return true;
}

// SQLite goes on with a file that was renamed or removed; this one is then nobody else's any more.
void SqliteRegistry::FollowFile(Purpose purpose) {
    if (!store_) return;
    if (store_->From == Store::Source::File) {
        const auto present = IdentityOf(file_);
        fileLost_ = !(present && present == store_->Identity) && !OpenFile();
    } else if (store_->From == Store::Source::ReadOnlyFile && purpose == Purpose::Write) {
        OpenFile(); // the disk may have room again
    }
}

void SqliteRegistry::ReplaceDamaged() {
    if (store_->From != Store::Source::File) return;
    {
        const Descriptor lock = LockFolderOf(file_);
        // Unless another instance has moved it already.
        if (IdentityOf(file_) == store_->Identity && !MoveAside()) return;
    }
    OpenFile();
}

// The same failure again and again, at every call, is told once.
void SqliteRegistry::Note(std::string text) {
    if (text == lastNote_) return;
    lastNote_ = text;
    notes_.push_back(std::move(text));
}

bool SqliteRegistry::IsKept() const {
    return store_ && store_->From == Store::Source::File;
}

std::vector<std::string> SqliteRegistry::TakeNotes() {
    return std::exchange(notes_, {});
}

// ---- what it holds

// Damage that comes to light is moved aside, and the statement runs once more on the new store.
SqliteRegistry::Outcome SqliteRegistry::Run(Purpose purpose, SqliteDatabase::Statement Store::*statement,
                                            std::initializer_list<SqliteDatabase::Value> values) {
    FollowFile(purpose);
    if (!store_ || (fileLost_ && purpose == Purpose::Write)) return {};
    Outcome outcome;
    const auto run = [&] {
        outcome.Texts.clear();
        return SqliteDatabase::Run((*store_).*statement, values, [&outcome](const SqliteDatabase::Row& row) {
            outcome.Texts.emplace_back(row.Text(0));
        });
    };
    int code = run();
    if (SqliteDatabase::IsDamage(code)) {
        ReplaceDamaged();
        code = run();
    }
    if (code != SQLITE_OK) return {};
    outcome.Succeeded = true;
    outcome.Changes = store_->Database.Changes();
    return outcome;
}

int SqliteRegistry::RegEnsureKey(std::string_view keyPath) {
    if (IsRunKey(keyPath)) return 2;
    const Outcome outcome = Run(Purpose::Write, &Store::AddKey, {ToLower(keyPath), keyPath});
    if (!outcome.Succeeded) return 0;
    return outcome.Changes == 1 ? 1 : 2;
}

std::vector<std::string> SqliteRegistry::RegValueNames(std::string_view keyPath) {
    if (!IsRunKey(keyPath)) return Run(Purpose::Read, &Store::ListNames, {ToLower(keyPath)}).Texts;
    return autostart_.Read() ? std::vector{std::string(ProgramTitle)} : std::vector<std::string>();
}

bool SqliteRegistry::RegFlush() {
    return IsKept() && !fileLost_ && store_->Database.Flush() == SQLITE_OK;
}

std::optional<std::string> SqliteRegistry::ReadValue(std::string_view keyPath, std::string_view valueName) {
    if (IsRunKey(keyPath)) return IsProgramValue(valueName) ? autostart_.Read() : std::nullopt;
    Outcome outcome = Run(Purpose::Read, &Store::FindValue, {ToLower(keyPath), ToLower(valueName)});
    if (outcome.Texts.empty()) return std::nullopt;
    return std::move(outcome.Texts.front());
}

Registry::Written SqliteRegistry::WriteValue(std::string_view keyPath, std::string_view valueName,
                                             std::string_view text) {
    if (IsRunKey(keyPath))
        return IsProgramValue(valueName) && autostart_.Write(text) ? Written::Yes : Written::No;
    const Outcome outcome =
        Run(Purpose::Write, &Store::PutValue, {ToLower(keyPath), ToLower(valueName), valueName, text});
    if (!outcome.Succeeded) return Written::No;
    return outcome.Changes == 1 ? Written::Yes : Written::KeyIsMissing;
}

bool SqliteRegistry::DeleteValue(std::string_view keyPath, std::string_view valueName) {
    if (IsRunKey(keyPath)) return IsProgramValue(valueName) && autostart_.Remove();
    return Run(Purpose::Write, &Store::RemoveValue, {ToLower(keyPath), ToLower(valueName)}).Changes == 1;
}

} // namespace korvalin
