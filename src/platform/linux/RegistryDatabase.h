#pragma once

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace korvalin {

/// One open database of keys and values with its prepared statements. Calls return SQLite's primary result
/// codes: SQLITE_OK, SQLITE_NOTFOUND for a key or value that is not there, anything else for a failure. Paths
/// and names are looked up by their lower-case form, which the caller supplies.
class RegistryDatabase {
  public:
    enum class Source { File, ReadOnlyFile, Memory };

    RegistryDatabase() = default;

    /// Opens the database, makes its tables when it is empty and checks its structure. IsDamage tells of a
    /// result that it holds something else than a sound settings store.
    [[nodiscard]] int Open(const std::filesystem::path& file, Source source);

    static bool IsDamage(int code);

    [[nodiscard]] int FindKey(std::string_view lowerPath);
    [[nodiscard]] int AddKey(std::string_view lowerPath, std::string_view path);
    /// SQLITE_TOOBIG for a value of more than `limit` bytes; `content` is then left alone.
    [[nodiscard]] int FindValue(std::string_view lowerPath, std::string_view lowerName, std::size_t limit,
                                std::string& content);
    [[nodiscard]] int PutValue(std::string_view lowerPath, std::string_view lowerName, std::string_view name,
                               std::string_view content);
    [[nodiscard]] int RemoveValue(std::string_view lowerPath, std::string_view lowerName);
    [[nodiscard]] int ListValues(std::string_view lowerPath, std::vector<std::string>& names);

  private:
    struct ConnectionCloser {
        void operator()(sqlite3* connection) const;
    };
    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;

    int Execute(const char* sql);
    int ReadNumber(const char* sql, long long& number);
    int CheckStructure();
    int EnsureTables(Source source);
    int Prepare(const char* sql, Statement& statement);
    int PrepareAll();

    template <typename TakeRow>
    int Run(const Statement& statement, std::initializer_list<std::string_view> texts, TakeRow&& takeRow);
    int Run(const Statement& statement, std::initializer_list<std::string_view> texts);

    // The connection comes first, so that it is closed after its statements.
    std::unique_ptr<sqlite3, ConnectionCloser> connection_;
    Statement findKey_, addKey_, findValue_, putValue_, removeValue_, listValues_;
};

} // namespace korvalin
