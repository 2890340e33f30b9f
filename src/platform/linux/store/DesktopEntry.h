// The text of autostart entries, by the Desktop Entry rules.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace korvalin {

/// The entry that starts `executable` with the desktop. `registeredPath` is what was asked for and is read
/// back.
std::string WriteAutostartEntry(std::string_view name, std::string_view executable,
                                std::string_view registeredPath);

/// The path that the entry was registered with, else the program of its Exec line; nullopt when the entry
/// starts nothing: it is damaged, or the user has switched it off in the desktop's own list.
std::optional<std::string> ReadAutostartEntry(std::string_view entry);

/// Whether the user has switched the entry off in the desktop's own list.
bool IsSwitchedOff(std::string_view entry);

} // namespace korvalin
