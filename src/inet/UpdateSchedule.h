#pragma once

#include <functional>

namespace korvalin {

class Clock;
class Errors;
class Settings;
class UpdateCheck;

/// When the automatic update check runs: some time after the machine went online, once in so many weeks, and
/// after a failure again an hour later.
class UpdateSchedule {
  public:
    /// Has AutoUpdateCheck called again after so many seconds; a later call replaces an earlier one.
    using CallAgain = std::function<void(double seconds)>;

    UpdateSchedule(UpdateCheck& check, Settings& settings, Errors& errors, Clock& clock);

    void Plug(CallAgain callAgain) { callAgain_ = std::move(callAgain); }

    /// To be called at every transition to online: the network is given a moment to settle.
    void Arm();

    /// Runs the check when it is due; the first call only arms. True when a new version was started and this
    /// program must end.
    bool AutoUpdateCheck();

  private:
    bool IsDue();
    bool RunCheck();

    UpdateCheck& check_;
    Settings& settings_;
    Errors& errors_;
    Clock& clock_;
    CallAgain callAgain_ = [](double) {};
    bool armed_ = false;
    bool done_ = false;
    double nextAttempt_ = 0; ///< seconds since the system's start
};

} // namespace korvalin
