#pragma once

#include "platform/Registry.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

/// Room for one text value read from the registry, its terminating zero included.
inline constexpr std::size_t RegistryBufferBytes = 1024;

/// Single values of the registry by key path. No call keeps a key open and none throws because of the
/// registry.
class RegistryPrimitives {
  public:
    explicit RegistryPrimitives(Registry& registry) : registry_(registry) {}

    /// Creates the key or opens it: 1 = it was created, 2 = it existed, 0 = the call failed.
    int RegEnsureKey(std::string_view keyPath, RegistryHive hive = RegistryHive::CurrentUser);

    /// The text of a value; "" when the key or value is missing, the text is longer than the buffer, or a
    /// call fails.
    [[nodiscard]] std::string RegReadString(std::string_view keyPath, std::string_view valueName,
                                            RegistryHive hive = RegistryHive::CurrentUser);

    /// Writes a value, creating its key when missing; a blank text deletes the value instead. True when
    /// something was written or deleted.
    bool RegWriteString(std::string_view keyPath, std::string_view valueName, std::string_view text,
                        RegistryHive hive = RegistryHive::CurrentUser);

    /// The names of all values of a key in alphabetical order; none when the key is missing or a call fails.
    [[nodiscard]] std::vector<std::string> RegValueNames(std::string_view keyPath,
                                                         RegistryHive hive = RegistryHive::CurrentUser);

  private:
    Registry& registry_;
};

} // namespace korvalin
