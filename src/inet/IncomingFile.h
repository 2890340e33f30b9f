#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace korvalin {

class Files;
class NewFile;

/// A file that goes to the disk as it comes in; nothing is left of one that is not finished.
class IncomingFile {
  public:
    enum class Result { Good, Empty, Missing, NotSaved };

    /// `lookedAt`: within so many bytes at its beginning a "404 Not Found" says that there is no such file.
    IncomingFile(Files& files, std::filesystem::path target, std::size_t lookedAt);
    ~IncomingFile();

    Result Take(std::string_view part);

    /// There is no more: puts the file in place.
    Result Finish();

  private:
    Result Begin();

    Files& files_;
    std::filesystem::path target_;
    std::size_t lookedAt_;
    std::string beginning_; ///< until it was looked at
    std::unique_ptr<NewFile> file_;
};

/// What a page says that is sent in the place of a missing one, whatever the status.
inline constexpr std::string_view MissingText = "404 Not Found";

} // namespace korvalin
