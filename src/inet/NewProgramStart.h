#pragma once

#include <filesystem>

namespace korvalin {

class Clock;
class Events;
class InstanceLock;
class Shell;

/// Starts a new version and waits until it says that it is ready. False when it cannot be started or ends
/// before it has said so, as for want of a library, or says nothing.
[[nodiscard]] bool StartNewProgram(const std::filesystem::path& program, Shell& shell, InstanceLock& lock,
                                   Events& events, Clock& clock);

} // namespace korvalin
