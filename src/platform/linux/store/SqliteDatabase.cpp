#include "platform/linux/store/SqliteDatabase.h"

#include <sqlite3.h>

#include <new>

namespace korvalin {
namespace {

struct Binder {
    sqlite3_stmt* Statement;
    int Index;

    int operator()(std::int64_t number) const { return sqlite3_bind_int64(Statement, Index, number); }
    int operator()(double number) const { return sqlite3_bind_double(Statement, Index, number); }
    // A null pointer would bind NULL, which an empty text is not.
    int operator()(std::string_view text) const {
        return sqlite3_bind_text64(Statement, Index, text.data() == nullptr ? "" : text.data(), text.size(),
                                   SQLITE_STATIC, SQLITE_UTF8);
    }
};

} // namespace

void SqliteDatabase::ConnectionCloser::operator()(sqlite3* connection) const {
    sqlite3_close_v2(connection);
}
void SqliteDatabase::Finalizer::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

std::int64_t SqliteDatabase::Row::Integer(int column) const {
    return sqlite3_column_int64(statement_, column);
}
double SqliteDatabase::Row::Real(int column) const {
    return sqlite3_column_double(statement_, column);
}
std::string_view SqliteDatabase::Row::Text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    if (text == nullptr) return {};
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

namespace {

// '?', '#' and '%' have a meaning of their own in an address.
std::string Address(const std::filesystem::path& file, std::string_view options) {
    std::string address = "file:";
    for (const char c : file.string()) {
        switch (c) {
        case '%': address += "%25"; break;
        case '?': address += "%3f"; break;
        case '#': address += "%23"; break;
        default: address += c;
        }
    }
    return address.append("?").append(options);
}

// SQLite would refuse links on the way to the folder too, which are the user's or the system's.
std::filesystem::path WithRealFolder(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::canonical(file.parent_path(), error);
    return error ? file : folder / file.filename();
}

} // namespace

int SqliteDatabase::OpenFile(const std::filesystem::path& file, int flags, int busyMilliseconds,
                             std::string_view options) {
    const int code = Open(Address(WithRealFolder(file), options),
                          flags | SQLITE_OPEN_NOFOLLOW | SQLITE_OPEN_URI, busyMilliseconds);
    // SQLite opens a file that it cannot write at this moment for reading only, and would stay so.
    const bool isLess = (flags & SQLITE_OPEN_READWRITE) != 0 && code == SQLITE_OK &&
                        sqlite3_db_readonly(connection_.get(), "main") == 1;
    return isLess ? SQLITE_READONLY : code;
}

int SqliteDatabase::OpenInMemory() {
    return Open(":memory:", SQLITE_OPEN_READWRITE, 0);
}

bool SqliteDatabase::IsDamage(int code) {
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

int SqliteDatabase::Open(const std::string& address, int flags, int busyMilliseconds) {
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(address.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    connection_.reset(opened); // there is one to close also after most failures
    if (code == SQLITE_OK) sqlite3_busy_timeout(opened, busyMilliseconds);
    return code;
}

int SqliteDatabase::InTransaction(Access access, const std::function<int()>& calls) {
    int code = Execute(access == Access::Read ? "BEGIN" : "BEGIN IMMEDIATE");
    if (code != SQLITE_OK) return code;
    code = calls();
    if (code == SQLITE_OK) code = Execute("COMMIT");
    if (code != SQLITE_OK) Execute("ROLLBACK");
    return code;
}

int SqliteDatabase::EnsureTables(std::int64_t applicationId, const char* tables, Access access) {
    // Looked at under the write lock, as another instance may be making them at this moment.
    return InTransaction(access, [&] {
        std::int64_t id = 0;
        std::int64_t objects = 0;
        int code = ReadNumber("PRAGMA application_id", id);
        if (code == SQLITE_OK) code = ReadNumber("SELECT count(*) FROM sqlite_schema", objects);
        if (code != SQLITE_OK || id == applicationId) return code;
        if (id != 0 || objects != 0) return SQLITE_NOTADB;
        code = Execute(tables);
        const std::string setId = "PRAGMA application_id = " + std::to_string(applicationId);
        return code == SQLITE_OK ? Execute(setId.c_str()) : code;
    });
}

int SqliteDatabase::CheckStructure() {
    Statement statement;
    int code = Prepare("PRAGMA quick_check(1)", statement);
    if (code != SQLITE_OK) return code;
    code = sqlite3_step(statement.get());
    if (code != SQLITE_ROW) return code;
    return Row(statement.get()).Text(0) == "ok" ? SQLITE_OK : SQLITE_CORRUPT;
}

int SqliteDatabase::Flush() {
    std::int64_t isBusy = 0;
    const int code = ReadNumber("PRAGMA wal_checkpoint", isBusy);
    return code == SQLITE_OK && isBusy != 0 ? SQLITE_BUSY : code;
}

int SqliteDatabase::Prepare(std::initializer_list<Preparation> statements) {
    for (const Preparation& statement : statements) {
        const int code = Prepare(statement.Sql, statement.Target);
        // A table or column that is missing although the header names this program: somebody has been at it.
        if (code != SQLITE_OK) return code == SQLITE_ERROR ? SQLITE_CORRUPT : code;
    }
    return SQLITE_OK;
}

int SqliteDatabase::Prepare(const char* sql, Statement& statement) {
    sqlite3_stmt* prepared = nullptr;
    const int code =
        sqlite3_prepare_v3(connection_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    statement.reset(prepared);
    return code;
}

int SqliteDatabase::ReadNumber(const char* sql, std::int64_t& number) {
    Statement statement;
    int code = Prepare(sql, statement);
    if (code != SQLITE_OK) return code;
    code = sqlite3_step(statement.get());
    number = sqlite3_column_int64(statement.get(), 0);
    return code == SQLITE_ROW ? SQLITE_OK : code;
}

int SqliteDatabase::Execute(const char* sql) {
    return sqlite3_exec(connection_.get(), sql, nullptr, nullptr, nullptr);
}

// Always resets: a statement that is left standing keeps its read transaction, and with it an old picture,
// open.
int SqliteDatabase::Run(const Statement& statement, std::initializer_list<Value> values,
                        const TakeRow& takeRow) {
    int code = SQLITE_OK;
    int index = 0;
    for (const Value& value : values) {
        code = std::visit(Binder{statement.get(), ++index}, value);
        if (code != SQLITE_OK) return code;
    }
    while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
        try {
            if (takeRow) takeRow(Row(statement.get()));
        } catch (const std::bad_alloc&) {
            code = SQLITE_NOMEM;
            break;
        }
    }
    sqlite3_reset(statement.get());
    return code == SQLITE_DONE ? SQLITE_OK : code;
}

int SqliteDatabase::Changes() const {
    return sqlite3_changes(connection_.get());
}

} // namespace korvalin
