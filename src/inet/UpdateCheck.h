#pragma once

#include "inet/UpdateDownload.h"

#include <optional>

namespace korvalin {

class DataFolder;
class Events;
class InstanceLock;
class Internet;
class MessageBoxes;
struct Locale;

/// Result codes of CheckUpdate.
enum class UpdateResult {
    NoUpgradeMark = 1, ///< the page says nothing about upgrades
    Offline = 2,       ///< no page could be read
    Failed = 3,        ///< a page without a release or a readable offer was read, or a download failed
    Postponed = 5,     ///< too early, not wanted now, taken before, or it cannot be installed here
    Newest = 8,        ///< the running version is the newest
    Started = 9,       ///< the new program was started: this one is to end
    NothingDone = 10   ///< checks are switched off, or there is no site, or a check is running
};

/// Looks for a newer release on the update site, tells the user, and on consent fetches and starts it.
class UpdateCheck {
  public:
    struct Parts {
        korvalin::UpdateSite& UpdateSite;
        korvalin::UpdateDownload& UpdateDownload;
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        korvalin::MessageBoxes& MessageBoxes;
        korvalin::Files& Files;
        korvalin::Shell& Shell;
        korvalin::Internet& Internet;
        korvalin::InstanceLock& InstanceLock;
        korvalin::Events& Events;
        korvalin::Clock& Clock;
        korvalin::DataFolder& DataFolder;
        const korvalin::Locale& Locale;
        ProgramVersion Version;
    };
    /// What the about box shows and knows of the other windows.
    struct Hooks {
        std::function<bool()> AboutBoxIsOpen = [] { return false; };
        std::function<void(const std::string& text)> ShowStatus = [](const std::string&) {};
        /// A check begins or has ended.
        std::function<void(bool running)> ShowRunning = [](bool) {};
        /// Whether the user has a window open, but for the monitor itself.
        std::function<bool()> UserIsBusy = [] { return false; };
    };

    explicit UpdateCheck(Parts parts);

    void Plug(Hooks hooks);

    /// `automatic`: nobody has asked for it. `preCheck`: reads the page for every version first. Windows stay
    /// alive meanwhile.
    UpdateResult CheckUpdate(bool automatic, bool preCheck);

    bool IsRunning() const { return running_; }

    /// Whether a check that nobody has asked for waits until the user is free. One that is asked for
    /// meanwhile has it go on at once.
    bool IsWaiting() const { return waitingText_ != 0; }

    /// Gives up the running check, which then is postponed.
    void Cancel();

    /// What a check that nobody saw waits for or has found out, in this run or an earlier one, and the user
    /// still has to know; empty when there is nothing.
    std::string Notice();

  private:
    std::optional<std::string> Hindrance();
    UpdateResult RunAlone(bool preCheck);
    UpdateResult Run(bool preCheck);
    UpdateResult TellToWait();
    UpdateResult JudgePage(const UpdatePage& page);
    UpdateResult TellThatNothingIsOffered(const UpdatePage& page);
    void ShowPage(const UpdatePage& page);
    UpdateResult Update(const UpdateOffer& offer, const UpdatePage& page);
    UpdateResult Fail(const std::string& text);
    UpdateResult TellOf(const UpdateOffer& offer, int text);
    void SetNotice(int text, const std::string& version);
    void NoteResult(UpdateResult result);
    bool WasTaken(const UpdateOffer& offer);
    void AwaitUser(int text);
    UpdateResult Start(const UpdateOffer& offer);
    bool StartFetched(const UpdateOffer& offer);
    std::string FaultText();
    UpdatePage ReadVersionPage();
    bool UserWants(const UpdatePage& page);
    void OpenVersionHistory();
    void NoteThatUserWasTold();
    bool MustAsk();
    std::string Text(int number);

    Parts parts_;
    Hooks hooks_;
    bool running_ = false;
    bool automatic_ = false;
    int waitingText_ = 0;
};

} // namespace korvalin
