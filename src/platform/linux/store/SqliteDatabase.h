#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

namespace korvalin {

/// One open SQLite database that one thread uses. Calls return SQLite's primary result codes.
class SqliteDatabase {
  public:
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;
    using Value = std::variant<std::int64_t, double, std::string_view>;

    /// A row that a statement has found; texts are valid until the next one.
    class Row {
      public:
        explicit Row(sqlite3_stmt* statement) : statement_(statement) {}
        std::int64_t Integer(int column) const;
        double Real(int column) const;
        std::string_view Text(int column) const;

      private:
        sqlite3_stmt* statement_;
    };
    using TakeRow = std::function<void(const Row&)>;

    struct Preparation {
        const char* Sql;
        Statement& Target;
    };

    /// Whether a result tells of a database that holds something else than it should.
    static bool IsDamage(int code);

    /// Opens a file for this thread alone without a look at the content; `flags` are SQLite's, and so are the
    /// `options` ("immutable=1"). A link in the file's place is refused, one to its folder is followed.
    [[nodiscard]] int OpenFile(const std::filesystem::path& file, int flags, int busyMilliseconds,
                               std::string_view options = "");
    /// One that lives as long as this object.
    [[nodiscard]] int OpenInMemory();

    enum class Access { Read, Write };
    /// Runs calls that end with a result code in one step; what they did is undone when one fails.
    [[nodiscard]] int InTransaction(Access access, const std::function<int()>& calls);
    /// Makes the tables in an empty database and gives it the id; SQLITE_NOTADB for one with another id.
    [[nodiscard]] int EnsureTables(std::int64_t applicationId, const char* tables, Access access);
    /// SQLITE_CORRUPT when the database's structure is broken.
    [[nodiscard]] int CheckStructure();

    /// Has what is written reach the medium, whatever "PRAGMA synchronous" says.
    [[nodiscard]] int Flush();
    /// SQLITE_CORRUPT for a table or column that is missing.
    [[nodiscard]] int Prepare(std::initializer_list<Preparation> statements);

    int Execute(const char* sql);
    /// Runs a statement to its end.
    [[nodiscard]] static int Run(const Statement& statement, std::initializer_list<Value> values,
                                 const TakeRow& takeRow = {});
    /// How many rows the last statement has changed.
    int Changes() const;

  private:
    int Open(const std::string& address, int flags, int busyMilliseconds);
    struct ConnectionCloser {
        void operator()(sqlite3* connection) const;
    };

    int Prepare(const char* sql, Statement& statement);
    int ReadNumber(const char* sql, std::int64_t& number);

    std::unique_ptr<sqlite3, ConnectionCloser> connection_;
};

} // namespace korvalin
