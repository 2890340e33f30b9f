#pragma once

#include <filesystem>

namespace korvalin {

class Clock;
class Events;
class InstanceLock;
class Shell;

/// Starts a new version and waits until it says, by the lock of its name, that it runs. False when it cannot
/// be started or says nothing: one that ends at once for want of a library, for instance.
[[nodiscard]] bool StartNewProgram(const std::filesystem::path& program, Shell& shell, InstanceLock& lock,
                                   Events& events, Clock& clock);

} // namespace korvalin
