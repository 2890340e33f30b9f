#pragma once

#include "base/Date.h"

#include <filesystem>
#include <optional>

namespace korvalin {

/// Local time of a file's last change; nullopt for a folder or a file that cannot be asked.
std::optional<Date> FileTime(const std::filesystem::path& file);

} // namespace korvalin
