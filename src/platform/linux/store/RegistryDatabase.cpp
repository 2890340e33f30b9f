#include "platform/linux/store/RegistryDatabase.h"

#include <sqlite3.h>

namespace korvalin {
namespace {

// How long a call waits for another instance's write.
constexpr int busyMilliseconds = 3000;

// In the file's header ("KrvR"): tells a settings store from any other database.
constexpr std::int64_t applicationId = 0x4B727652;

constexpr const char* fileSettings = "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL";

constexpr const char* tables = R"(
    CREATE TABLE RegistryKeys (LowerPath TEXT NOT NULL PRIMARY KEY, Path TEXT NOT NULL) WITHOUT ROWID;
    CREATE TABLE RegistryValues (LowerPath TEXT NOT NULL, LowerName TEXT NOT NULL, Name TEXT NOT NULL,
                                 Content TEXT NOT NULL, PRIMARY KEY (LowerPath, LowerName)) WITHOUT ROWID)";

} // namespace

int RegistryDatabase::OpenConnection(const std::filesystem::path& file, Source source) {
    switch (source) {
    case Source::Memory: return database_.Open(":memory:", SQLITE_OPEN_READWRITE, busyMilliseconds);
    case Source::ReadOnlyFile:
        // immutable: a folder that takes no files has no room for the locks' shared memory either
        return database_.Open(SqliteDatabase::Address(file, "immutable=1"),
                              SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, busyMilliseconds);
    case Source::File: break;
    }
    const int code = database_.Open(file.string(), SQLITE_OPEN_READWRITE, busyMilliseconds);
    return code == SQLITE_OK ? database_.Execute(fileSettings) : code;
}

int RegistryDatabase::Prepare() {
    return database_.Prepare(
        {{"SELECT 1 FROM RegistryKeys WHERE LowerPath = ?1", findKey_},
         {"INSERT INTO RegistryKeys VALUES (?1, ?2) ON CONFLICT DO NOTHING", addKey_},
         {"SELECT Content FROM RegistryValues WHERE LowerPath = ?1 AND LowerName = ?2", findValue_},
         // the name stays as it was first written
         {"INSERT INTO RegistryValues VALUES (?1, ?2, ?3, ?4) "
          "ON CONFLICT (LowerPath, LowerName) DO UPDATE SET Content = excluded.Content",
          putValue_},
         {"DELETE FROM RegistryValues WHERE LowerPath = ?1 AND LowerName = ?2", removeValue_},
         {"SELECT Name FROM RegistryValues WHERE LowerPath = ?1 ORDER BY LowerName", listValues_}});
}

int RegistryDatabase::Open(const std::filesystem::path& file, Source source) {
    using Access = SqliteDatabase::Access;
    int code = OpenConnection(file, source);
    const Access access = source == Source::ReadOnlyFile ? Access::Read : Access::Write;
    if (code == SQLITE_OK) code = database_.EnsureTables(applicationId, tables, access);
    if (code == SQLITE_OK) code = database_.CheckStructure();
    if (code == SQLITE_OK) code = Prepare();
    return code;
}

int RegistryDatabase::FindKey(std::string_view lowerPath) {
    bool found = false;
    const int code =
        SqliteDatabase::Run(findKey_, {lowerPath}, [&found](const SqliteDatabase::Row&) { found = true; });
    return code == SQLITE_OK && !found ? SQLITE_NOTFOUND : code;
}

int RegistryDatabase::AddKey(std::string_view lowerPath, std::string_view path) {
    return SqliteDatabase::Run(addKey_, {lowerPath, path});
}

int RegistryDatabase::FindValue(std::string_view lowerPath, std::string_view lowerName, std::size_t limit,
                                std::string& content) {
    int result = SQLITE_NOTFOUND;
    const auto take = [&](const SqliteDatabase::Row& row) {
        const std::string_view found = row.Text(0);
        result = found.size() > limit ? SQLITE_TOOBIG : SQLITE_OK;
        if (result == SQLITE_OK) content = found;
    };
    const int code = SqliteDatabase::Run(findValue_, {lowerPath, lowerName}, take);
    return code == SQLITE_OK ? result : code;
}

int RegistryDatabase::PutValue(std::string_view lowerPath, std::string_view lowerName, std::string_view name,
                               std::string_view content) {
    return SqliteDatabase::Run(putValue_, {lowerPath, lowerName, name, content});
}

int RegistryDatabase::RemoveValue(std::string_view lowerPath, std::string_view lowerName) {
    const int code = SqliteDatabase::Run(removeValue_, {lowerPath, lowerName});
    return code == SQLITE_OK && database_.Changes() == 0 ? SQLITE_NOTFOUND : code;
}

int RegistryDatabase::ListValues(std::string_view lowerPath, std::vector<std::string>& names) {
    names.clear();
    return SqliteDatabase::Run(listValues_, {lowerPath},
                               [&names](const SqliteDatabase::Row& row) { names.emplace_back(row.Text(0)); });
}

} // namespace korvalin
