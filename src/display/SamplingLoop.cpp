#include "display/SamplingLoop.h"

#include "base/FlagGuard.h"
#include "errors/Errors.h"
#include "settings/Settings.h"
#include "traffic/LineMonitor.h"

#include <algorithm>
#include <cmath>

namespace korvalin {
namespace {

constexpr double stepSeconds = 1.0;
constexpr Date updateCheckDelay = 68 * OneSecond;
constexpr Date updateCheckOverdue = 60 * OneSecond;

} // namespace

// Steps are counted in seconds awake: midnight, a wall clock that is set and a suspend neither skip one nor
// add any.
void SamplingLoop::TimerMain_Timer() {
    const double t = parts_.Clock.AwakeSeconds();
    if (t - lastStep_ <= stepSeconds) return;
    lastStep_ += stepSeconds;
    if (lastStep_ + stepSeconds < t) lastStep_ = t; // fell behind: no burst of updates to catch up

    Get_TransferedData();
    CheckForUpdate();
    WatchScreenSize();
    WatchWindowPosition();
}

int SamplingLoop::MillisecondsToNextStep() const {
    const double remaining = lastStep_ + stepSeconds - parts_.Clock.AwakeSeconds();
    return static_cast<int>(std::floor(std::clamp(remaining, 0.0, stepSeconds) * 1000)) + 1;
}

void SamplingLoop::SetUpdateCheckPending(Date due) {
    updateCheckPending_ = true;
    nextUpdateCheck_ = due;
}

void SamplingLoop::CheckForUpdate() {
    if (!updateCheckPending_) return;
    const Date now = parts_.Clock.Now();
    if (nextUpdateCheck_ + updateCheckOverdue < now) nextUpdateCheck_ = now + updateCheckDelay;
    if (nextUpdateCheck_ >= now) return;
    updateCheckPending_ = false;
    hooks_.Check();
}

void SamplingLoop::WatchScreenSize() {
    const std::optional<ScreenSize> size = parts_.Screen.Primary();
    if (!size ||
        (size->WidthPixels == lastScreen_.WidthPixels && size->HeightPixels == lastScreen_.HeightPixels)) {
        return;
    }
    const bool remembered = lastScreen_.WidthPixels != 0;
    lastScreen_ = *size;
    if (!remembered) return;
    lastWindowPos_.reset();
    if (window_ != nullptr) window_->RestoreGeometry();
}

void SamplingLoop::WatchWindowPosition() {
    if (window_ == nullptr) return;
    const WindowPosition position = window_->Position();
    const bool moved = lastWindowPos_ && *lastWindowPos_ != position;
    lastWindowPos_ = position;
    if (moved) window_->SaveGeometry();
}

void SamplingLoop::Get_TransferedData() {
    if (updateBusy_) return;
    const FlagGuard busy(updateBusy_);
    FollowWallClock();
    if (!timeBase_) timeBase_ = SecondsOfDay(parts_.Clock.Now()) - parts_.Clock.AwakeSeconds();
    parts_.LineMonitor.Get_Bytes_Transmitted();
    FollowChartLine();
    HandleOnlineChange(RefreshMenus());
    for (std::size_t line = 1; line <= parts_.LineState.LineCount; ++line)
        AppendSample(line);
    if (parts_.LineState.LineCount == 0 || window_ == nullptr) return;
    // Once for all lines: the picture after the last line's sample is the one that stays.
    window_->DrawChart(false);
    window_->IconDraw();
    window_->ShowCaption();
}

// The line in the chart is the one of that name, wherever it stands; while it is gone another one stands in.
void SamplingLoop::FollowChartLine() {
    if (parts_.InfoTexts.ChartLineNo == 0) {
        parts_.InfoTexts.ChartLineNo = std::max(parts_.Settings.Get(Keys::ChartLineNo), 1);
        parts_.InfoTexts.ChartLineName = parts_.Settings.Get(Keys::ChartLineName);
    }
    for (std::size_t line = 1; line <= parts_.LineState.LineCount; ++line) {
        const std::string& name = parts_.LineState.LineTable(line).EntryName;
        const auto number = static_cast<int>(line);
        if (parts_.InfoTexts.ChartLineName.empty() && number == parts_.InfoTexts.ChartLineNo)
            parts_.InfoTexts.ChartLineName = name;
        if (!name.empty() && name == parts_.InfoTexts.ChartLineName) parts_.InfoTexts.ChartLineNo = number;
    }
}

void SamplingLoop::FollowWallClock() {
    const Date step = watch_.TakeStep();
    if (step == 0) return;
    parts_.LineMonitor.ShiftMoments(step);
    parts_.Errors.ShiftMoments(step);
    if (updateCheckPending_) nextUpdateCheck_ += step;
}

// Rebuilds the dial menus when they no longer fit. Returns whether the hang-up item was visible before.
bool SamplingLoop::RefreshMenus() {
    if (window_ == nullptr) return false;
    const bool hangUpVisible = window_->HangUpItemVisible();
    const bool hangUpNeeded = parts_.LineState.OnDialUp();
    if ((hangUpVisible && !parts_.LineState.AnyLineConnected) || (!hangUpVisible && hangUpNeeded))
        window_->RefreshDialMenus();
    return hangUpVisible;
}

void SamplingLoop::HandleOnlineChange(bool hangUpWasVisible) {
    const bool online = parts_.LineState.AnyLineConnected;
    if (online != lastOnline_ || !firstUpdateDone_) {
        if (online) {
            if (parts_.InfoTexts.AutoShow && window_ != nullptr) window_->ShowMainWindow(true);
            hooks_.Schedule();
        } else if (window_ != nullptr) {
            window_->DrawChart(hangUpWasVisible);
            window_->IconDraw();
            window_->ShowCaption();
            if (parts_.InfoTexts.AutoShow) window_->ShowMainWindow(false);
        }
        lastOnline_ = online;
    }
    firstUpdateDone_ = true;
    if (window_ != nullptr) window_->RefreshLinesMenu();
}

void SamplingLoop::AppendSample(std::size_t line) {
    LineRecord& record = parts_.LineState.LineTable(line);
    record.SampleTimer = *timeBase_ + record.SampleAwake;
    HistorySample& newest = parts_.RateHistory.Append(line, record.SampleTimer);
    if (!record.Connected) return;
    newest.CounterSource = record.CounterSource;
    // The system's counters: a connection's own begin at 0, which no rate is measured from.
    newest.Received = record.StartReceived + record.BytesReceived;
    newest.Transmitted = record.StartTransmitted + record.BytesTransmitted;
    parts_.RateHistory.ComputeRates(line);
}

void SamplingLoop::ResizeRateHistory() {
    parts_.RateHistory.GrowLines(parts_.LineState.LineCount);
    if (visibleSamples_ > static_cast<std::size_t>(parts_.InfoTexts.ConnDataMax)) {
        parts_.InfoTexts.ConnDataMax = static_cast<int>(visibleSamples_);
        parts_.Settings.Set(Keys::ConnDataMax, parts_.InfoTexts.ConnDataMax);
    }
    parts_.RateHistory.ResizeSamples(static_cast<std::size_t>(parts_.InfoTexts.ConnDataMax));
}

} // namespace korvalin
