#pragma once

#include "base/Date.h"

#include <filesystem>

namespace korvalin {

/// True when the path exists, as file or folder.
bool FileExists(const std::filesystem::path& path);

/// True when the path exists and is no folder.
bool IsFileNotFolder(const std::filesystem::path& path);

/// A name that is free for the file's backup: its own, "_yyyymmdd-hhmmss" and, when there is one already,
/// that of a second later and so on. `separator` stands in the middle.
std::filesystem::path FreeBackupName(const std::filesystem::path& file, Date moment, char separator = '-');

} // namespace korvalin
