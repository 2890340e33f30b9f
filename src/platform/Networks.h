#pragma once

#include <string>

namespace korvalin {

/// Which networks the machine's adapters are on.
class Networks {
  public:
    virtual ~Networks() = default;

    /// The user's name for the network that a wireless adapter uses ("Home", "Phone"); empty for a cable and
    /// where nobody knows. Cheap enough for every second.
    [[nodiscard]] virtual std::string NetworkOf(const std::string& adapter) = 0;
};

} // namespace korvalin
