#pragma once

#include <string>

namespace korvalin {

/// Held from the first question to the end of the process; the system frees it when the process is killed.
class InstanceLock {
  public:
    virtual ~InstanceLock() = default;

    /// Whether an earlier process of the same executable name and the same settings store is running. When
    /// none is, this process is the earlier one from now on. False also when the lock cannot be used at all.
    [[nodiscard]] virtual bool PreviousInstanceRunning() = 0;

    /// Whether a process of that executable name is running on the same settings store.
    [[nodiscard]] virtual bool IsRunning(const std::string& executableName) = 0;

    /// Tells whoever started this process that it can do its work; only where it holds the lock.
    virtual void SayReady() = 0;

    /// Whether a process of that executable name is running and has said that it is ready.
    [[nodiscard]] virtual bool IsReady(const std::string& executableName) = 0;
};

} // namespace korvalin
