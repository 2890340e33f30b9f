#include "inet/UpdateCheck.h"

#include "base/Locale.h"
#include "base/ProgramTitle.h"
#include "errors/Errors.h"
#include "inet/ConnectionState.h"
#include "inet/UpdateSite.h"
#include "inet/WebAddress.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/MessageBoxes.h"
#include "platform/Shell.h"
#include "settings/Settings.h"

#include <fmt/format.h>

#include <system_error>

namespace korvalin {
namespace {

constexpr const char* generalPage = "update_general.html";

// A moment of another day has its date with it.
std::string MomentText(Date moment, Date now, const Locale& locale) {
    const bool today = DayOf(moment) == DayOf(now);
    return FormatPattern(moment, today ? locale.Time : locale.ShortDate + " " + locale.Time);
}

} // namespace

UpdateCheck::UpdateCheck(Parts parts) : parts_(std::move(parts)) {}

void UpdateCheck::Plug(Hooks hooks) {
    hooks_ = std::move(hooks);
    parts_.Download.ShowStatus = hooks_.ShowStatus;
}

void UpdateCheck::SetRunning(bool running) {
    running_ = running;
    hooks_.ShowRunning(running);
}

UpdateResult UpdateCheck::CheckUpdate(bool automatic, bool preCheck) {
    if (const auto hindrance = Hindrance()) {
        hooks_.ShowStatus(*hindrance);
        return UpdateResult::NothingDone;
    }
    SetRunning(true);
    parts_.Site.Begin();
    automatic_ = automatic;
    UpdateResult result = UpdateResult::Failed;
    parts_.Errors.Step("CheckUpdate", [&] { result = Run(preCheck); });
    if (parts_.Site.IsCancelled() && result != UpdateResult::Started) {
        hooks_.ShowStatus(parts_.Text(24));
        result = UpdateResult::Postponed;
    }
    SetRunning(false);
    return result;
}

// What keeps a check from beginning, in words.
std::optional<std::string> UpdateCheck::Hindrance() {
    if (parts_.Settings.Get(Keys::NoInet)) return parts_.Text(26);
    if (!parts_.Site.IsThere()) return parts_.Text(22);
    if (running_) return parts_.Text(25);
    return std::nullopt;
}

void UpdateCheck::Cancel() {
    if (running_) parts_.Site.Cancel();
}

UpdateResult UpdateCheck::Run(bool preCheck) {
    if (parts_.Settings.Get(Keys::UpdateNext) > parts_.Clock.Now()) return TellToWait();
    if (preCheck && !parts_.OnRasLine() && parts_.Site.LoadPage(generalPage).Text().empty())
        return UpdateResult::Offline;
    hooks_.ShowStatus(parts_.Text(4));
    const UpdatePage page = ReadVersionPage();
    if (page.HasNewestRelease()) return JudgePage(page);
    hooks_.ShowStatus(parts_.Text(5));
    return IsOnline(parts_.Internet) ? UpdateResult::Failed : UpdateResult::Offline;
}

UpdateResult UpdateCheck::TellToWait() {
    if (hooks_.AboutBoxIsOpen()) {
        hooks_.ShowStatus(parts_.Text(1));
        const std::string moment =
            MomentText(parts_.Settings.Get(Keys::UpdateNext), parts_.Clock.Now(), parts_.Locale);
        parts_.MessageBoxes.Show(parts_.Text(18) + parts_.Text(19) + moment + parts_.Text(20),
                                 std::string(ProgramTitle), MessageIcon::Information, MessageButtons::Ok);
    }
    return UpdateResult::Postponed;
}

// A release may have nothing to say about the running version.
UpdatePage UpdateCheck::ReadVersionPage() {
    const ProgramVersion& v = parts_.Version;
    UpdatePage page = parts_.Site.LoadPage(fmt::format("update{}{}{}.html", v.Major, v.Minor, v.Revision));
    if (page.HasNewestRelease()) return page;
    return parts_.Site.LoadPage(generalPage);
}

UpdateResult UpdateCheck::JudgePage(const UpdatePage& page) {
    if (!automatic_) hooks_.ShowStatus(parts_.Text(7) + page.NewestRelease() + parts_.Text(9));
    if (!page.IsUpgradable()) return ShowPage(page);
    const auto offer =
        page.Offer(automatic_ ? UpdatePage::Channel::Automatic : UpdatePage::Channel::OnDemand);
    if (offer && IsNewer(offer->Version, parts_.Version)) return Update(*offer, page);
    hooks_.ShowStatus(parts_.Text(11));
    return UpdateResult::Newest;
}

UpdateResult UpdateCheck::ShowPage(const UpdatePage& page) {
    hooks_.ShowStatus(parts_.Text(8));
    if (automatic_) return UpdateResult::NoUpgradeMark;
    const std::filesystem::path file = parts_.DataFolder() / "Temp.htm";
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
    if (parts_.Files.Replace(file, page.Text()))
        static_cast<void>(parts_.Shell.OpenAddress(FileAddress(file.string())));
    return UpdateResult::NoUpgradeMark;
}

UpdateResult UpdateCheck::Update(const UpdateOffer& offer, const UpdatePage& page) {
    if (!parts_.Download.CanWrite()) return TellThatItCannotBeInstalled();
    if (MustAsk() && !UserWants(page)) {
        if (!parts_.Site.IsCancelled()) NoteThatUserWasTold();
        return UpdateResult::Postponed;
    }
    switch (parts_.Download.Run(offer, page)) {
    case UpdateDownload::Outcome::TooEarly: return TellToWait();
    case UpdateDownload::Outcome::Failed: hooks_.ShowStatus(parts_.Text(15)); return UpdateResult::Failed;
    case UpdateDownload::Outcome::Ready: break;
    }
    return Start();
}

bool UpdateCheck::MustAsk() {
    return !automatic_ || !parts_.Settings.Get(Keys::AutoUpdate);
}

bool UpdateCheck::UserWants(const UpdatePage& page) {
    if (parts_.Settings.Get(Keys::UpdateNext) < parts_.Clock.Now()) OpenVersionHistory();
    return parts_.MessageBoxes.Show(parts_.Text(12) + parts_.Text(14) + page.NewestRelease() + "?",
                                    std::string(ProgramTitle), MessageIcon::Question,
                                    MessageButtons::YesNo) == MessageAnswer::Yes;
}

// Programs that the system installs are updated by the system; all that can be done is to tell.
UpdateResult UpdateCheck::TellThatItCannotBeInstalled() {
    hooks_.ShowStatus(parts_.Text(23));
    OpenVersionHistory();
    NoteThatUserWasTold();
    return UpdateResult::Postponed;
}

void UpdateCheck::OpenVersionHistory() {
    if (const std::string& page = parts_.Site.VersionHistoryPage(); !page.empty())
        static_cast<void>(parts_.Shell.OpenPage(page));
}

// What nobody has asked for is not told again at every opportunity.
void UpdateCheck::NoteThatUserWasTold() {
    if (automatic_) parts_.Settings.Set(Keys::UpdateCheckLast, DayOf(parts_.Clock.Now()));
}

UpdateResult UpdateCheck::Start() {
    const std::filesystem::path program = parts_.Download.NewProgram();
    if (!automatic_ && !parts_.Site.IsCancelled()) {
        parts_.MessageBoxes.Show(parts_.Text(21), std::string(ProgramTitle), MessageIcon::Information,
                                 MessageButtons::Ok);
    }
    if (parts_.Site.IsCancelled()) return UpdateResult::Postponed;
    if (parts_.Shell.StartProgram(program)) return UpdateResult::Started;
    parts_.Errors.WriteErrorLog("cannot be started: " + program.string(), "Update");
    std::error_code ignored;
    std::filesystem::remove(program, ignored);
    hooks_.ShowStatus(parts_.Text(15));
    return UpdateResult::Failed;
}

} // namespace korvalin
