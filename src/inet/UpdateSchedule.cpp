#include "inet/UpdateSchedule.h"

#include "base/Date.h"
#include "errors/Errors.h"
#include "inet/UpdateCheck.h"
#include "platform/Clock.h"
#include "platform/Internet.h"
#include "settings/Settings.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvalin {
namespace {

constexpr double settlingSeconds = 68;
constexpr double secondsBetweenAttempts = 3600;
constexpr int daysOfWeek = 7;

} // namespace

UpdateSchedule::UpdateSchedule(UpdateCheck& check, Settings& settings, Errors& errors, Internet& internet,
                               Clock& clock)
    : check_(check), settings_(settings), errors_(errors), internet_(internet), clock_(clock) {}

void UpdateSchedule::Arm() {
    armed_ = true;
    if (!done_) hooks_.CallAgain(settlingSeconds);
}

bool UpdateSchedule::AutoUpdateCheck(bool preCheck) {
    if (!armed_) {
        Arm();
        return false;
    }
    if (done_) return false;
    const double remaining = nextAttempt_ - clock_.BootSeconds();
    if (remaining > 0 || check_.IsRunning()) {
        hooks_.CallAgain(std::max(remaining, settlingSeconds));
        return false;
    }
    nextAttempt_ = clock_.BootSeconds() + secondsBetweenAttempts;
    done_ = settings_.Get(Keys::NoInet);
    const bool started = !done_ && IsDue() && !internet_.IsMetered() && RunCheck(preCheck);
    if (!done_) hooks_.CallAgain(secondsBetweenAttempts);
    return started;
}

// A last check in the future is one before the clock was set back.
bool UpdateSchedule::IsDue() {
    const Date today = DayOf(clock_.Now());
    const Date last = settings_.Get(Keys::UpdateCheckLast);
    return last < today - settings_.Get(Keys::UpdateInterval) * daysOfWeek || last > today;
}

bool UpdateSchedule::RunCheck(bool preCheck) {
    const UpdateResult result = check_.CheckUpdate(true, preCheck);
    if (result < UpdateResult::Newest) {
        errors_.WriteErrorLog(fmt::format("Return {}", static_cast<int>(result)), "AutoUpdate");
        return false;
    }
    done_ = true;
    if (result == UpdateResult::Newest) settings_.Set(Keys::UpdateCheckLast, DayOf(clock_.Now()));
    return result == UpdateResult::Started;
}

} // namespace korvalin
