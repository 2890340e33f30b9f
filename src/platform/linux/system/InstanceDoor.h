#pragma once

#include "platform/linux/files/Descriptor.h"

#include <filesystem>
#include <string_view>

namespace korvalin {

/// Lets a second start ask the running instance for its window: a socket beside the instance lock, in a
/// folder that only the user can enter.
class InstanceDoor {
  public:
    InstanceDoor(const std::filesystem::path& folder, std::string_view executableName);

    /// Only for who holds the instance lock. A descriptor that becomes readable when somebody knocks; -1 when
    /// the folder cannot have it, and nobody is heard then.
    int Open();

    /// Takes the knocks that have come.
    void Answer() const;

    /// Asks the running instance; without one nothing happens.
    void Knock() const;

  private:
    std::filesystem::path path_;
    Descriptor socket_;
};

} // namespace korvalin
