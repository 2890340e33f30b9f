#pragma once

#include "base/Date.h"
#include "platform/linux/files/Descriptor.h"
#include "platform/linux/store/DatabaseFiles.h"

#include <filesystem>
#include <optional>
#include <string>

namespace korvalin {

/// The settings store as files: where it lies, who may read it, which one it is, and how a damaged one gets
/// out of the way. The database's content is none of its business.
class RegistryFile {
  public:
    explicit RegistryFile(std::filesystem::path path);

    const std::filesystem::path& Path() const { return path_; }

    /// Creates what is missing, the folders for the user alone (0700) and an empty file (0600), and takes
    /// other users' permissions from what is there. 0 or the system's error number.
    [[nodiscard]] int Prepare() const;

    /// nullopt when there is no such file.
    std::optional<FileIdentity> CurrentIdentity() const { return IdentityOf(path_); }

    /// While it is held no other instance opens the store or moves it aside. Where folders cannot be locked
    /// (some network file systems) it holds nothing.
    Descriptor LockFolder() const;

    /// Renames the database and its log to "<name>.damaged_yyyymmdd-hhmmss"; the new path, or nullopt when
    /// the folder does not allow it.
    std::optional<std::filesystem::path> MoveAside(Date now) const;

  private:
    std::filesystem::path path_;
};

} // namespace korvalin
