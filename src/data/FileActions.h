#pragma once

#include "base/Date.h"

#include <filesystem>
#include <optional>

namespace korvalin {

class Clock;
class Events;

/// Local time of a file's last change; nullopt for a folder or a file that cannot be asked.
std::optional<Date> FileTime(const std::filesystem::path& file);

/// Deletes a file, trying again until it is gone or `seconds` have passed; windows stay alive meanwhile. A
/// folder is never deleted. True when nothing of that name exists any more.
bool DeleteFileWait(const std::filesystem::path& path, double seconds, Events& events, Clock& clock);

} // namespace korvalin
