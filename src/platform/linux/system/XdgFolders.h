// The user's folders by the XDG base directory rules: a variable counts only when it holds an absolute path;
// otherwise the default below the home folder serves.
#pragma once

#include <filesystem>

namespace korvalin {

/// $XDG_CONFIG_HOME, else ~/.config.
std::filesystem::path XdgConfigHome();

/// $XDG_DATA_HOME, else ~/.local/share.
std::filesystem::path XdgDataHome();

/// $XDG_RUNTIME_DIR, which lasts from the user's log-in to the log-out; empty when there is none.
std::filesystem::path XdgRuntimeFolder();

/// The folder of this program's settings store and locks.
std::filesystem::path ConfigFolder();

/// The folder of the programs that start with the user's desktop.
std::filesystem::path AutostartFolder();

} // namespace korvalin
