#pragma once

#include <filesystem>

namespace korvalin {

// The user's folders by the XDG base directory rules: the variable when it holds an absolute path, else the default below
// the home folder.
std::filesystem::path XdgConfigHome();
std::filesystem::path XdgDataHome();

} // namespace korvalin
