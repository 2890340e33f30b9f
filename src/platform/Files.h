// Writing that survives a crash. Reading and folder walks use the standard library. Where a method says only
// that it has failed, errno has the cause.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

namespace korvalin {

/// Holds other programs off a file for as long as it lives.
class FileLock {
  public:
    virtual ~FileLock() = default;
};

/// A file that is written beside the one that it will replace. Its destructor drops it, unless it is in
/// place.
class NewFile {
  public:
    virtual ~NewFile() = default;

    [[nodiscard]] virtual bool Write(std::string_view part) = 0;

    /// Has it reach the medium and renames it over the old file.
    [[nodiscard]] virtual bool PutInPlace() = 0;
};

class Files {
  public:
    virtual ~Files() = default;

    /// Appends whole lines with one write; creates the file (mode 0600) when missing. False when not all of
    /// it could be written; a part that did get written is cut off again.
    [[nodiscard]] virtual bool Append(const std::filesystem::path& path, std::string_view lines) = 0;

    /// Whether lines must have reached the medium before AppendLines returns.
    enum class Flush { No, Yes };
    /// How long another program that holds the file is waited for: as long as its rewrite of a large file may
    /// take, or a tenth of a second.
    enum class Wait { ForRewrite, Briefly };
    /// Appends whole lines with one write; a file that is missing or empty gets `header` first, one that ends
    /// within a line gets `lineEnd` first. 0 or the system's error number (EAGAIN: still held); the file is
    /// then as it was.
    [[nodiscard]] virtual int AppendLines(const std::filesystem::path& path, std::string_view header,
                                          std::string_view lines, std::string_view lineEnd, Flush flush,
                                          Wait wait) = 0;

    /// Holds off AppendLines and other holders. nullptr when the file is missing or somebody else holds it.
    [[nodiscard]] virtual std::unique_ptr<FileLock> Hold(const std::filesystem::path& path) = 0;

    /// Takes a part of a file's new content; false when it could not be written.
    using Sink = std::function<bool(std::string_view part)>;
    /// Like Replace for content that comes in parts; the old file stays under the name `kept`, which must be
    /// free. At every moment `path` is either the old file or the new one, whole. False leaves the old one;
    /// errno is 0 when nothing but `write` has given up.
    [[nodiscard]] virtual bool ReplaceKeeping(const std::filesystem::path& path,
                                              const std::filesystem::path& kept,
                                              const std::function<bool(const Sink& sink)>& write) = 0;

    /// Replaces the content: written beside, flushed to the medium, renamed over the old file. False leaves
    /// the old content as it was.
    [[nodiscard]] virtual bool Replace(const std::filesystem::path& path, std::string_view content) = 0;

    /// Replace for content that comes bit by bit. nullptr when no file can be created.
    [[nodiscard]] virtual std::unique_ptr<NewFile> BeginReplace(const std::filesystem::path& path) = 0;

    /// Copies a file over `to` in the same careful way, keeping its permissions.
    [[nodiscard]] virtual bool Copy(const std::filesystem::path& from, const std::filesystem::path& to) = 0;

    /// Whether a file is a plain one with a single name, no link, that belongs to the user or to root and
    /// that nobody else can write, in a folder that nobody else can write either.
    [[nodiscard]] virtual bool IsOursAlone(const std::filesystem::path& path) = 0;

    /// Creates a folder and its missing parents, each with mode 0700 where it is new. 0 or the system's error
    /// number.
    [[nodiscard]] virtual int CreateFolders(const std::filesystem::path& folder) = 0;
};

} // namespace korvalin
