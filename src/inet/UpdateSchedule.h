#pragma once

#include <functional>

namespace korvalin {

class Clock;
class Errors;
class Internet;
class Settings;
class UpdateCheck;

/// When the automatic update check runs: some time after the machine went online, once in so many weeks, and
/// after a failure again an hour later.
class UpdateSchedule {
  public:
    struct Hooks {
        /// Has AutoUpdateCheck called again after so many seconds; a later call replaces an earlier one.
        std::function<void(double seconds)> CallAgain = [](double) {};
    };

    UpdateSchedule(UpdateCheck& check, Settings& settings, Errors& errors, Internet& internet, Clock& clock);

    void Plug(Hooks hooks) { hooks_ = std::move(hooks); }

    /// To be called at every transition to online: the network is given a moment to settle.
    void Arm();

    /// Runs the check when it is due, with `preCheck` as CheckUpdate has it; the first call only arms. True
    /// when a new version was started and this program must end.
    bool AutoUpdateCheck(bool preCheck);

  private:
    bool IsDue();
    bool RunCheck(bool preCheck);

    UpdateCheck& check_;
    Settings& settings_;
    Errors& errors_;
    Internet& internet_;
    Clock& clock_;
    Hooks hooks_;
    bool armed_ = false;
    bool done_ = false;
    double nextAttempt_ = 0; ///< seconds since the system's start
};

} // namespace korvalin
