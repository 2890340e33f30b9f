#pragma once

#include <filesystem>

namespace korvalin {

class Clock;
class Events;

/// Deletes a file, trying again until it is gone or `seconds` have passed; windows stay alive meanwhile. A
/// folder is never deleted. True when nothing of that name exists any more.
bool DeleteFileWait(const std::filesystem::path& path, double seconds, Events& events, Clock& clock);

} // namespace korvalin
