#pragma once

#include "inet/UpdateDownload.h"

#include <optional>

namespace korvalin {

class DataFolder;
class Internet;
class MessageBoxes;
struct Locale;

/// Result codes of CheckUpdate.
enum class UpdateResult {
    NoUpgradeMark = 1, ///< the page says nothing about upgrades
    Offline = 2,       ///< no page could be read
    Failed = 3,        ///< a page without a release was read, or a download failed
    Postponed = 5,     ///< it is too early, the user does not want it now, or it cannot be installed here
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
        korvalin::Clock& Clock;
        korvalin::DataFolder& DataFolder;
        const korvalin::Locale& Locale;
        ProgramVersion Version;
    };
    /// What the about box shows.
    struct Hooks {
        std::function<bool()> AboutBoxIsOpen = [] { return false; };
        std::function<void(const std::string& text)> ShowStatus = [](const std::string&) {};
        /// A check begins or has ended.
        std::function<void(bool running)> ShowRunning = [](bool) {};
    };

    explicit UpdateCheck(Parts parts);

    void Plug(Hooks hooks);

    /// `automatic`: nobody has asked for it. `preCheck`: reads the page for every version first. Windows stay
    /// alive meanwhile.
    UpdateResult CheckUpdate(bool automatic, bool preCheck);

    bool IsRunning() const { return running_; }

    /// Gives up the running check, which then is postponed.
    void Cancel();

  private:
    std::optional<std::string> Hindrance();
    UpdateResult RunAlone(bool preCheck);
    UpdateResult Run(bool preCheck);
    UpdateResult TellToWait();
    UpdateResult JudgePage(const UpdatePage& page);
    UpdateResult ShowPage(const UpdatePage& page);
    UpdateResult Update(const UpdateOffer& offer, const UpdatePage& page);
    UpdateResult TellThatItCannotBeInstalled();
    UpdateResult Start();
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
};

} // namespace korvalin
