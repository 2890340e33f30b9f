// Writing that survives a crash. Reading and folder walks use the standard library.
#pragma once

#include <filesystem>
#include <string_view>

namespace korvalin {

class Files {
  public:
    virtual ~Files() = default;

    /// Appends whole lines with one write; creates the file (mode 0600) when missing. False when not all of
    /// it could be written; a part that did get written is cut off again.
    [[nodiscard]] virtual bool Append(const std::filesystem::path& path, std::string_view lines) = 0;

    /// Replaces the content: written beside, flushed to the medium, renamed over the old file. False leaves
    /// the old content as it was.
    [[nodiscard]] virtual bool Replace(const std::filesystem::path& path, std::string_view content) = 0;

    /// Copies a file over `to` in the same careful way, keeping its permissions.
    [[nodiscard]] virtual bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

    /// Creates a folder and its missing parents, each with mode 0700 where it is new. 0 or the system's error
    /// number.
    [[nodiscard]] virtual int CreateFolders(const std::filesystem::path& folder) = 0;
};

} // namespace korvalin
