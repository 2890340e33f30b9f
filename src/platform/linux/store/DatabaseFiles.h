#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <sys/types.h>

namespace korvalin {

/// What SQLite keeps beside a database, and the database itself, in the order in which they are moved: a log
/// that stayed behind alone would be taken for the next database's.
inline constexpr std::array<const char*, 3> DatabaseParts = {"-wal", "-shm", ""};

/// Tells one file from another that has taken its name.
struct FileIdentity {
    dev_t Device = 0;
    ino_t Inode = 0;
    bool operator==(const FileIdentity&) const = default;
};

/// nullopt when there is no such file.
[[nodiscard]] std::optional<FileIdentity> IdentityOf(const std::filesystem::path& file);

/// Makes an empty file for the user alone (0600) unless there is one. 0 or the system's error number.
[[nodiscard]] int CreateDatabaseFile(const std::filesystem::path& file);

/// Takes other users' permissions from a file, never from what a link leads to.
void MakePrivate(const std::filesystem::path& file);

/// Renames a database with all its parts; false when the folder does not allow it.
[[nodiscard]] bool RenameDatabase(const std::filesystem::path& from, const std::filesystem::path& to);

/// Removes a database with all its parts.
void RemoveDatabase(const std::filesystem::path& file);

} // namespace korvalin
