#pragma once

#include <string>

namespace korvalin {

struct PasswdEntry {
    std::string Name, HomeFolder;
};

/// The user database's entry of the user who runs the process; empty texts when there is none.
PasswdEntry FindPasswdEntry();

} // namespace korvalin
