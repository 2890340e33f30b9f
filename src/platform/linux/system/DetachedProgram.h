#pragma once

#include <string>
#include <vector>

namespace korvalin {

/// Starts `command` (the program, looked up in PATH unless it has a slash, and its arguments) as nobody's
/// child: in a session of its own, with no descriptors beyond the standard ones, nothing to wait for later.
/// False when it cannot be executed.
[[nodiscard]] bool StartDetached(const std::vector<std::string>& command);

} // namespace korvalin
