#pragma once

#include "platform/linux/store/SqliteDatabase.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

/// One open database of keys and values with its prepared statements. Calls return SQLite's primary result
/// codes: SQLITE_OK, SQLITE_NOTFOUND for a key or value that is not there, anything else for a failure. Paths
/// and names are looked up by their lower-case form, which the caller supplies.
class RegistryDatabase {
  public:
    enum class Source { File, ReadOnlyFile, Memory };

    /// Opens the database, makes its tables when it is empty and checks its structure.
    /// SqliteDatabase::IsDamage tells of a result that it holds something else than a sound settings store.
    [[nodiscard]] int Open(const std::filesystem::path& file, Source source);

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
    int OpenConnection(const std::filesystem::path& file, Source source);
    int Prepare();

    // The connection comes first, so that it is closed after its statements.
    SqliteDatabase database_;
    SqliteDatabase::Statement findKey_, addKey_, findValue_, putValue_, removeValue_, listValues_;
};

} // namespace korvalin
