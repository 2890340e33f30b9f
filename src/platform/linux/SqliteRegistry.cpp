#include "platform/linux/SqliteRegistry.h"

#include "base/Date.h"
#include "base/Text.h"
#include "platform/linux/PosixFiles.h"
#include "platform/linux/SystemClock.h"

#include <array>
#include <system_error>

#include <sqlite3.h>
#include <sys/stat.h>

namespace korvalin {
namespace {

constexpr int busyMilliseconds = 3000;

// Names are compared by their lower-case form, which knows more letters than SQLite's own comparison; the name as it was
// first written is kept for lists.
constexpr const char* schema = R"(
    PRAGMA journal_mode = WAL;
    PRAGMA synchronous = NORMAL;
    CREATE TABLE IF NOT EXISTS registry_keys (path TEXT PRIMARY KEY) WITHOUT ROWID;
    CREATE TABLE IF NOT EXISTS registry_values (path TEXT, name TEXT, display TEXT NOT NULL, text TEXT NOT NULL,
                                                PRIMARY KEY (path, name)) WITHOUT ROWID;
)";

// In the order of SqliteRegistry::Query.
constexpr std::array<const char*, 6> queryTexts = {
    "SELECT 1 FROM registry_keys WHERE path = ?1",
    "INSERT OR IGNORE INTO registry_keys (path) VALUES (?1)",
    "SELECT text FROM registry_values WHERE path = ?1 AND name = ?2",
    "INSERT INTO registry_values (path, name, display, text) VALUES (?1, ?2, ?3, ?4) "
    "ON CONFLICT (path, name) DO UPDATE SET text = excluded.text",
    "DELETE FROM registry_values WHERE path = ?1 AND name = ?2",
    "SELECT display FROM registry_values WHERE path = ?1 ORDER BY name"};

bool IsDamage(int sqliteCode) { return (sqliteCode & 0xFF) == SQLITE_CORRUPT || (sqliteCode & 0xFF) == SQLITE_NOTADB; }

int CodeOf(int sqliteCode) {
    switch (sqliteCode & 0xFF) {
    case SQLITE_OK:
    case SQLITE_DONE:
    case SQLITE_ROW: return ErrorSuccess;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_CANTOPEN: return ErrorAccessDenied;
    default: return ErrorWriteFault;
    }
}

} // namespace

void SqliteRegistry::Closer::operator()(sqlite3* database) const { sqlite3_close_v2(database); }
void SqliteRegistry::Closer::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

// A prepared query in use: binds, steps, and is ready for the next use when it goes out of scope.
class SqliteRegistry::Statement {
  public:
    Statement(SqliteRegistry& registry, Query query) : statement_(registry.queries_[query].get()) {}
    ~Statement() {
        sqlite3_reset(statement_);
        sqlite3_clear_bindings(statement_);
    }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& Bind(std::string_view text) {
        sqlite3_bind_text(statement_, ++bound_, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        return *this;
    }
    int Step() { return sqlite3_step(statement_); }
    std::string_view Text() {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, 0));
        return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, 0))};
    }

  private:
    sqlite3_stmt* statement_;
    int bound_ = 0;
};

SqliteRegistry::SqliteRegistry(std::filesystem::path file, Note note) : file_(std::move(file)), note_(std::move(note)) {
    static_cast<void>(PosixFiles().CreateFolders(file_.parent_path()));
    Open();
}

SqliteRegistry::~SqliteRegistry() = default;

void SqliteRegistry::Open() {
    if (OpenFile(file_.string())) return;
    if (database_ != nullptr && IsDamage(sqlite3_errcode(database_.get()))) {
        MoveAside();
        if (OpenFile(file_.string())) return;
    }
    note_("The settings store " + file_.string() + " cannot be used; settings are kept for this run only.");
    OpenFile(":memory:");
}

bool SqliteRegistry::OpenFile(const std::string& name) {
    queries_.clear();
    // The file and the two that go with it take the mode that is in force when they are made.
    const mode_t mask = umask(0077);
    sqlite3* database = nullptr;
    const int opened = sqlite3_open_v2(name.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    database_.reset(database);
    bool usable = opened == SQLITE_OK;
    if (usable) {
        sqlite3_busy_timeout(database, busyMilliseconds);
        usable = sqlite3_exec(database, schema, nullptr, nullptr, nullptr) == SQLITE_OK && Prepare();
    }
    umask(mask);
    // A store that may only be read still gives the settings it holds.
    if (!usable && opened == SQLITE_OK && (sqlite3_errcode(database) & 0xFF) == SQLITE_READONLY) return Prepare();
    return usable;
}

bool SqliteRegistry::Prepare() {
    queries_.clear();
    for (const char* text : queryTexts) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v3(database_.get(), text, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) != SQLITE_OK) {
            return false;
        }
        queries_.emplace_back(statement);
    }
    return true;
}

void SqliteRegistry::MoveAside() {
    queries_.clear();
    database_.reset();
    const std::string aside = file_.string() + ".damaged" + FormatDateSuffix(SystemClock().Now());
    std::error_code ignored;
    for (const char* part : {"", "-wal", "-shm"}) std::filesystem::rename(file_.string() + part, aside + part, ignored);
    note_("The settings store was damaged and is now " + aside + "; the defaults apply.");
}

// Runs one access. A store found damaged is moved aside and the access tried again on the new one.
template <typename Work>
int SqliteRegistry::Guarded(Work&& work) {
    if (queries_.size() != QueryCount) return ErrorWriteFault;
    const int result = work();
    if (!IsDamage(sqlite3_errcode(database_.get()))) return result;
    MoveAside();
    if (!OpenFile(file_.string())) OpenFile(":memory:");
    return queries_.size() == QueryCount ? work() : ErrorWriteFault;
}

int SqliteRegistry::HandOut(std::string_view keyPath, RegistryKey& key) {
    key = ++lastKey_;
    openKeys_[key] = ToLower(keyPath);
    return ErrorSuccess;
}

const std::string* SqliteRegistry::PathOf(RegistryKey key) const {
    const auto found = openKeys_.find(key);
    return found == openKeys_.end() ? nullptr : &found->second;
}

int SqliteRegistry::CreateKeyEx(RegistryHive, std::string_view keyPath, RegistryAccess, RegistryKey& key,
                                RegistryDisposition& disposition) {
    return Guarded([&] {
        const int code = CodeOf(Statement(*this, AddKey).Bind(ToLower(keyPath)).Step());
        if (code != ErrorSuccess) return code;
        disposition = sqlite3_changes(database_.get()) > 0 ? RegistryDisposition::CreatedNewKey
                                                           : RegistryDisposition::OpenedExistingKey;
        return HandOut(keyPath, key);
    });
}

int SqliteRegistry::OpenKeyEx(RegistryHive, std::string_view keyPath, RegistryAccess, RegistryKey& key) {
    return Guarded([&] {
        const int step = Statement(*this, FindKey).Bind(ToLower(keyPath)).Step();
        if (step == SQLITE_DONE) return ErrorFileNotFound;
        return step == SQLITE_ROW ? HandOut(keyPath, key) : CodeOf(step);
    });
}

int SqliteRegistry::QueryValueEx(RegistryKey key, std::string_view valueName, std::size_t bufferSize,
                                 std::string& text) {
    return Guarded([&] {
        const std::string* path = PathOf(key);
        if (path == nullptr) return ErrorInvalidHandle;
        Statement statement(*this, ReadValue);
        const int step = statement.Bind(*path).Bind(ToLower(valueName)).Step();
        if (step == SQLITE_DONE) return ErrorFileNotFound;
        if (step != SQLITE_ROW) return CodeOf(step);
        const std::string_view stored = statement.Text();
        if (stored.size() + 1 > bufferSize) return ErrorMoreData;
        text = stored;
        return ErrorSuccess;
    });
}

int SqliteRegistry::SetValueEx(RegistryKey key, std::string_view valueName, std::string_view text) {
    return Guarded([&] {
        const std::string* path = PathOf(key);
        if (path == nullptr) return ErrorInvalidHandle;
        return CodeOf(
            Statement(*this, WriteValue).Bind(*path).Bind(ToLower(valueName)).Bind(valueName).Bind(text).Step());
    });
}

int SqliteRegistry::DeleteValue(RegistryKey key, std::string_view valueName) {
    return Guarded([&] {
        const std::string* path = PathOf(key);
        if (path == nullptr) return ErrorInvalidHandle;
        const int code = CodeOf(Statement(*this, RemoveValue).Bind(*path).Bind(ToLower(valueName)).Step());
        if (code != ErrorSuccess) return code;
        return sqlite3_changes(database_.get()) > 0 ? ErrorSuccess : ErrorFileNotFound;
    });
}

int SqliteRegistry::EnumValues(RegistryKey key, std::vector<std::string>& valueNames) {
    return Guarded([&] {
        valueNames.clear();
        const std::string* path = PathOf(key);
        if (path == nullptr) return ErrorInvalidHandle;
        Statement statement(*this, ListValues);
        statement.Bind(*path);
        int step = 0;
        while ((step = statement.Step()) == SQLITE_ROW) valueNames.emplace_back(statement.Text());
        return CodeOf(step);
    });
}

void SqliteRegistry::CloseKey(RegistryKey key) { openKeys_.erase(key); }

} // namespace korvalin
