#pragma once

#include <string>

namespace korvalin {

class User {
  public:
    virtual ~User() = default;

    /// Log-in name of the user who runs the program; empty when the system knows none.
    [[nodiscard]] virtual std::string Name() = 0;
};

} // namespace korvalin
