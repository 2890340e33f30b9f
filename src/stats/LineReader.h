#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace korvalin {

/// Cuts blocks of bytes into lines. A line ends with CR LF, LF or CR; the last one may lack its end. A line
/// beyond a megabyte comes as an empty one.
class LineSplitter {
  public:
    using Use = std::function<void(std::string_view line)>;
    explicit LineSplitter(Use use) : use_(std::move(use)) {}

    /// Takes the next bytes; each line that they end goes to the use at once.
    void Feed(std::string_view block);
    /// The input has ended.
    void Finish();

  private:
    void Keep(std::string_view part);
    void EndLine(std::string_view part);

    Use use_;
    std::string begun_; // the part of a line that the last block ended in
    bool tooLong_ = false;
    bool afterReturn_ = false; // a line feed would belong to the carriage return before it
};

/// Reads a file line by line, in blocks. Returns the number of bytes read; `use` may throw. Throws
/// std::system_error when the file cannot be read or is none; the lines before a failure have been handed
/// out.
std::uintmax_t ReadLines(const std::filesystem::path& path, const LineSplitter::Use& use);

} // namespace korvalin
