#pragma once

namespace korvalin {

/// Lets windows stay alive while the program waits.
class Events {
  public:
    virtual ~Events() = default;

    /// Handles what is pending and returns at once.
    virtual void ProcessPending() = 0;

    virtual void Sleep(int milliseconds) = 0;
};

} // namespace korvalin
