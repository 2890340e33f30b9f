#pragma once

namespace korvalin {

/// Lets windows stay alive while the program waits.
class Events {
  public:
    virtual ~Events() = default;

    /// Handles what is pending and returns at once.
    virtual void ProcessPending() = 0;

    /// Waits without handling any events.
    virtual void Sleep(int milliseconds) = 0;

    /// Lets so much time pass in which everything is handled as it comes.
    virtual void Wait(int milliseconds) {
        ProcessPending();
        Sleep(milliseconds);
    }
};

} // namespace korvalin
