// What can happen to every file, in the user's words.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>

namespace korvalin {

/// A failure of a file together with what follows from it.
class FileFailure : public std::system_error {
  public:
    /// `error` is the system's number, `consequence` that of a text in section "modGlobal".
    FileFailure(int error, const std::filesystem::path& path, int consequence)
        : std::system_error(error, std::generic_category(), path.string()), consequence_(consequence) {}
    int Consequence() const { return consequence_; }

  private:
    int consequence_;
};

/// The number of the text, in section "modGlobal", for a cause that every user meets one day: a full disk, a
/// folder without permission. 0 for any other cause.
int FailureText(const std::error_code& code);

/// The file or folder that an exception is about.
std::string FailedFile(const std::system_error& error);

} // namespace korvalin
