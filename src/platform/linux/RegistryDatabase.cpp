#include "platform/linux/RegistryDatabase.h"

#include <sqlite3.h>

namespace korvalin {
namespace {

// How long a call waits for another instance's write.
constexpr int busyMilliseconds = 3000;

// In the file's header ("KrvR"): tells a settings store from any other database.
constexpr long long applicationId = 0x4B727652;

constexpr const char* fileSettings = "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL";

constexpr const char* tables = R"(
    CREATE TABLE RegistryKeys (LowerPath TEXT NOT NULL PRIMARY KEY, Path TEXT NOT NULL) WITHOUT ROWID;
    CREATE TABLE RegistryValues (LowerPath TEXT NOT NULL, LowerName TEXT NOT NULL, Name TEXT NOT NULL,
                                 Content TEXT NOT NULL, PRIMARY KEY (LowerPath, LowerName)) WITHOUT ROWID;
    PRAGMA application_id = 0x4B727652)";

// "file:" address of a path, in which '?', '#' and '%' have a meaning of their own.
std::string FileAddress(const std::filesystem::path& file) {
    std::string address = "file:";
    for (const char c : file.string()) {
        switch (c) {
        case '%': address += "%25"; break;
        case '?': address += "%3f"; break;
        case '#': address += "%23"; break;
        default: address += c;
        }
    }
    return address;
}

std::string_view Column(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    if (text == nullptr) return {};
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

// A null pointer would bind NULL, which an empty text is not.
int BindText(sqlite3_stmt* statement, int index, std::string_view text) {
    return sqlite3_bind_text64(statement, index, text.data() == nullptr ? "" : text.data(), text.size(),
                               SQLITE_STATIC, SQLITE_UTF8);
}

} // namespace

void RegistryDatabase::ConnectionCloser::operator()(sqlite3* connection) const {
    sqlite3_close_v2(connection);
}
void RegistryDatabase::Finalizer::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

bool RegistryDatabase::IsDamage(int code) {
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

int RegistryDatabase::Execute(const char* sql) {
    return sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr);
}

int RegistryDatabase::Prepare(const char* sql, Statement& statement) {
    sqlite3_stmt* prepared = nullptr;
    const int code =
        sqlite3_prepare_v3(connection_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    statement.reset(prepared);
    return code;
}

int RegistryDatabase::ReadNumber(const char* sql, long long& number) {
    Statement statement;
    int code = Prepare(sql, statement);
    if (code != SQLITE_OK) return code;
    code = sqlite3_step(statement.get());
    number = sqlite3_column_int64(statement.get(), 0);
    return code == SQLITE_ROW ? SQLITE_OK : code;
}

int RegistryDatabase::CheckStructure() {
    Statement statement;
    int code = Prepare("PRAGMA quick_check(1)", statement);
    if (code != SQLITE_OK) return code;
    code = sqlite3_step(statement.get());
    if (code != SQLITE_ROW) return code;
    return Column(statement.get(), 0) == "ok" ? SQLITE_OK : SQLITE_CORRUPT;
}

int RegistryDatabase::EnsureTables(Source source) {
    // Looked at under the write lock, as another instance may be making them at this moment.
    const char* begin = source == Source::ReadOnlyFile ? "BEGIN" : "BEGIN IMMEDIATE";
    int code = Execute(begin);
    if (code != SQLITE_OK) return code;
    long long id = 0;
    long long objects = 0;
    code = ReadNumber("PRAGMA application_id", id);
    if (code == SQLITE_OK) code = ReadNumber("SELECT count(*) FROM sqlite_schema", objects);
    if (code == SQLITE_OK && id != applicationId) {
        code = id == 0 && objects == 0 ? Execute(tables) : SQLITE_NOTADB;
    }
    if (code == SQLITE_OK) code = Execute("COMMIT");
    if (code != SQLITE_OK) Execute("ROLLBACK");
    return code;
}

int RegistryDatabase::PrepareAll() {
    struct {
        const char* Sql;
        Statement& Target;
    } const statements[] = {
        {"SELECT 1 FROM RegistryKeys WHERE LowerPath = ?1", findKey_},
        {"INSERT INTO RegistryKeys VALUES (?1, ?2) ON CONFLICT DO NOTHING", addKey_},
        {"SELECT Content FROM RegistryValues WHERE LowerPath = ?1 AND LowerName = ?2", findValue_},
        // the name stays as it was first written
        {"INSERT INTO RegistryValues VALUES (?1, ?2, ?3, ?4) "
         "ON CONFLICT (LowerPath, LowerName) DO UPDATE SET Content = excluded.Content",
         putValue_},
        {"DELETE FROM RegistryValues WHERE LowerPath = ?1 AND LowerName = ?2", removeValue_},
        {"SELECT Name FROM RegistryValues WHERE LowerPath = ?1 ORDER BY LowerName", listValues_}};
    for (const auto& statement : statements) {
        const int code = Prepare(statement.Sql, statement.Target);
        // A table or column that is missing although the header names this program: somebody has been at it.
        if (code != SQLITE_OK) return code == SQLITE_ERROR ? SQLITE_CORRUPT : code;
    }
    return SQLITE_OK;
}

int RegistryDatabase::Open(const std::filesystem::path& file, Source source) {
    std::string address = file.string();
    // One thread uses a registry, so SQLite need not lock against others.
    int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;
    if (source == Source::Memory) address = ":memory:";
    if (source == Source::ReadOnlyFile) {
        // immutable: a folder that takes no files has no room for the locks' shared memory either
        address = FileAddress(file) + "?immutable=1";
        flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_URI;
    }
    sqlite3* opened = nullptr;
    int code = sqlite3_open_v2(address.c_str(), &opened, flags, nullptr);
    connection_.reset(opened); // there is one to close also after most failures
    if (code != SQLITE_OK) return code;
    sqlite3_busy_timeout(opened, busyMilliseconds);
    if (source == Source::File) code = Execute(fileSettings);
    if (code == SQLITE_OK) code = EnsureTables(source);
    if (code == SQLITE_OK) code = CheckStructure();
    if (code == SQLITE_OK) code = PrepareAll();
    return code;
}

// Always resets: a statement that is left standing keeps its read transaction, and with it an old picture,
// open.
template <typename TakeRow>
int RegistryDatabase::Run(const Statement& statement, std::initializer_list<std::string_view> texts,
                          TakeRow&& takeRow) {
    int code = SQLITE_OK;
    int index = 0;
    for (const std::string_view text : texts) {
        code = BindText(statement.get(), ++index, text);
        if (code != SQLITE_OK) return code;
    }
    while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
        try {
            takeRow(statement.get());
        } catch (const std::bad_alloc&) {
            code = SQLITE_NOMEM;
            break;
        }
    }
    sqlite3_reset(statement.get());
    return code == SQLITE_DONE ? SQLITE_OK : code;
}

int RegistryDatabase::Run(const Statement& statement, std::initializer_list<std::string_view> texts) {
    return Run(statement, texts, [](sqlite3_stmt*) {});
}

int RegistryDatabase::FindKey(std::string_view lowerPath) {
    bool found = false;
    const int code = Run(findKey_, {lowerPath}, [&found](sqlite3_stmt*) { found = true; });
    return code == SQLITE_OK && !found ? SQLITE_NOTFOUND : code;
}

int RegistryDatabase::AddKey(std::string_view lowerPath, std::string_view path) {
    return Run(addKey_, {lowerPath, path});
}

int RegistryDatabase::FindValue(std::string_view lowerPath, std::string_view lowerName, std::size_t limit,
                                std::string& content) {
    int result = SQLITE_NOTFOUND;
    const int code = Run(findValue_, {lowerPath, lowerName}, [&](sqlite3_stmt* row) {
        const std::string_view found = Column(row, 0);
        result = found.size() > limit ? SQLITE_TOOBIG : SQLITE_OK;
        if (result == SQLITE_OK) content = found;
    });
    return code == SQLITE_OK ? result : code;
}

int RegistryDatabase::PutValue(std::string_view lowerPath, std::string_view lowerName, std::string_view name,
                               std::string_view content) {
    return Run(putValue_, {lowerPath, lowerName, name, content});
}

int RegistryDatabase::RemoveValue(std::string_view lowerPath, std::string_view lowerName) {
    const int code = Run(removeValue_, {lowerPath, lowerName});
    return code == SQLITE_OK && sqlite3_changes(connection_.get()) == 0 ? SQLITE_NOTFOUND : code;
}

int RegistryDatabase::ListValues(std::string_view lowerPath, std::vector<std::string>& names) {
    names.clear();
    return Run(listValues_, {lowerPath}, [&names](sqlite3_stmt* row) { names.emplace_back(Column(row, 0)); });
}

} // namespace korvalin
