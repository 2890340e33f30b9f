#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace korvalin {

/// The content of a small file of the kernel or of the user; nullopt when it cannot be read, with errno
/// telling why. Reading stops after `limit` bytes: a file that some program filled without end must not fill
/// the memory.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& path,
                                         std::size_t limit = std::size_t{1} << 20);

} // namespace korvalin
