// What can happen to every file, in the user's words.
#pragma once

#include <string>
#include <system_error>

namespace korvalin {

/// The number of the text, in section "modGlobal", for a cause that every user meets one day: a full disk, a
/// folder without permission. 0 for any other cause.
int FailureText(const std::error_code& code);

/// The file or folder that an exception is about.
std::string FailedFile(const std::system_error& error);

} // namespace korvalin
