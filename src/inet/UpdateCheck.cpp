#include "inet/UpdateCheck.h"

#include "base/FlagGuard.h"
#include "base/Locale.h"
#include "base/ProgramTitle.h"
#include "data/DataFolder.h"
#include "errors/Errors.h"
#include "inet/ConnectionState.h"
#include "inet/NewProgramStart.h"
#include "inet/UpdateSite.h"
#include "inet/WebAddress.h"
#include "lang/Language.h"
#include "platform/Clock.h"
#include "platform/Events.h"
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
    parts_.UpdateDownload.Plug({.ShowStatus = hooks_.ShowStatus});
}

std::string UpdateCheck::Text(int number) {
    return parts_.Language.Lng("modInternet", number);
}

UpdateResult UpdateCheck::CheckUpdate(bool automatic, bool preCheck) {
    if (const auto hindrance = Hindrance()) {
        hooks_.ShowStatus(*hindrance);
        return UpdateResult::NothingDone;
    }
    automatic_ = automatic;
    const UpdateResult result = RunAlone(preCheck);
    hooks_.ShowRunning(false);
    return result;
}

UpdateResult UpdateCheck::RunAlone(bool preCheck) {
    const FlagGuard running(running_);
    hooks_.ShowRunning(true);
    parts_.UpdateSite.Begin();
    UpdateResult result = UpdateResult::Failed;
    parts_.Errors.Step("CheckUpdate", [&] { result = Run(preCheck); });
    if (!parts_.UpdateSite.IsCancelled() || result == UpdateResult::Started) return result;
    hooks_.ShowStatus(Text(24));
    return UpdateResult::Postponed;
}

// What keeps a check from beginning, in words.
std::optional<std::string> UpdateCheck::Hindrance() {
    if (parts_.Settings.Get(Keys::NoInet)) return Text(26);
    if (!parts_.UpdateSite.IsThere()) return Text(22);
    if (running_) return Text(25);
    return std::nullopt;
}

void UpdateCheck::Cancel() {
    if (running_) parts_.UpdateSite.Cancel();
}

UpdateResult UpdateCheck::Run(bool preCheck) {
    if (parts_.Settings.Get(Keys::UpdateNext) > parts_.Clock.Now()) return TellToWait();
    if (preCheck && parts_.UpdateSite.LoadPage(generalPage).Text().empty()) return UpdateResult::Offline;
    hooks_.ShowStatus(Text(4));
    const UpdatePage page = ReadVersionPage();
    if (page.HasNewestRelease()) return JudgePage(page);
    hooks_.ShowStatus(Text(5));
    return IsOnline(parts_.Internet) ? UpdateResult::Failed : UpdateResult::Offline;
}

UpdateResult UpdateCheck::TellToWait() {
    if (hooks_.AboutBoxIsOpen()) {
        hooks_.ShowStatus(Text(1));
        const std::string moment =
            MomentText(parts_.Settings.Get(Keys::UpdateNext), parts_.Clock.Now(), parts_.Locale);
        parts_.MessageBoxes.Show(Text(18) + Text(19) + moment + Text(20), std::string(ProgramTitle),
                                 MessageIcon::Information, MessageButtons::Ok);
    }
    return UpdateResult::Postponed;
}

// A release may have nothing to say about the running version.
UpdatePage UpdateCheck::ReadVersionPage() {
    const ProgramVersion& v = parts_.Version;
    UpdatePage page =
        parts_.UpdateSite.LoadPage(fmt::format("update{}{}{}.html", v.Major, v.Minor, v.Revision));
    if (page.HasNewestRelease()) return page;
    return parts_.UpdateSite.LoadPage(generalPage);
}

UpdateResult UpdateCheck::JudgePage(const UpdatePage& page) {
    if (!automatic_) hooks_.ShowStatus(Text(7) + page.NewestRelease() + Text(9));
    if (!page.IsUpgradable()) return ShowPage(page);
    const auto offer =
        page.Offer(automatic_ ? UpdatePage::Channel::Automatic : UpdatePage::Channel::OnDemand);
    if (!offer) {
        parts_.Errors.WriteErrorLog("the offer of the page cannot be read", "Update");
        return Fail(Text(27));
    }
    if (!parts_.UpdateSite.Vouches(offer->Version)) return Fail(Text(5) + FaultText());
    if (IsNewer(offer->Version, parts_.Version)) return Update(*offer, page);
    notice_.clear();
    hooks_.ShowStatus(Text(11));
    return UpdateResult::Newest;
}

UpdateResult UpdateCheck::Fail(const std::string& text) {
    hooks_.ShowStatus(text);
    return UpdateResult::Failed;
}

// Why nothing came, as a sentence behind another.
std::string UpdateCheck::FaultText() {
    switch (parts_.UpdateSite.Fault()) {
    case UpdateFault::NotFound: return Text(28);
    case UpdateFault::WrongLength: return Text(29);
    case UpdateFault::NotSigned: return Text(30);
    case UpdateFault::NoAnswer: return Text(31);
    case UpdateFault::Expired: return Text(32);
    case UpdateFault::OtherVersion: return Text(33);
    case UpdateFault::NotSaved: return Text(34);
    case UpdateFault::Damaged: return Text(35);
    case UpdateFault::None: break;
    }
    return {};
}

UpdateResult UpdateCheck::ShowPage(const UpdatePage& page) {
    hooks_.ShowStatus(Text(8));
    if (automatic_) return UpdateResult::NoUpgradeMark;
    const std::filesystem::path file = parts_.DataFolder.GetDataPath() / "Temp.htm";
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
    if (parts_.Files.Replace(file, page.Text()))
        static_cast<void>(parts_.Shell.OpenAddress(FileAddress(file.string())));
    return UpdateResult::NoUpgradeMark;
}

UpdateResult UpdateCheck::Update(const UpdateOffer& offer, const UpdatePage& page) {
    if (!parts_.UpdateDownload.CanWrite()) return TellThatItCannotBeInstalled(offer);
    if (automatic_ && WasTaken(offer)) {
        NoteThatUserWasTold();
        return UpdateResult::Postponed;
    }
    if (!MustAsk() && parts_.Internet.IsMetered()) {
        parts_.Errors.WriteErrorLog("nothing is downloaded over a metered network", "Update");
        return UpdateResult::Postponed;
    }
    if (MustAsk() && !UserWants(page)) {
        if (!parts_.UpdateSite.IsCancelled()) NoteThatUserWasTold();
        return UpdateResult::Postponed;
    }
    switch (parts_.UpdateDownload.Run(offer, page)) {
    case UpdateDownload::Outcome::TooEarly: return TellToWait();
    case UpdateDownload::Outcome::Failed: return Fail(Text(15) + FaultText());
    case UpdateDownload::Outcome::Ready: break;
    }
    return Start(offer);
}

// A program that is not the version it is offered as would be installed again and again.
bool UpdateCheck::WasTaken(const UpdateOffer& offer) {
    if (parts_.Settings.Get(Keys::UpdateTaken) != offer.Version.Numbers()) return false;
    parts_.Errors.WriteErrorLog(offer.Version.Numbers() + " was installed before", "Update");
    return true;
}

bool UpdateCheck::MustAsk() {
    return !automatic_ || !parts_.Settings.Get(Keys::AutoUpdate);
}

bool UpdateCheck::UserWants(const UpdatePage& page) {
    if (parts_.Settings.Get(Keys::UpdateNext) < parts_.Clock.Now()) OpenVersionHistory();
    return parts_.MessageBoxes.Show(Text(12) + Text(14) + page.NewestRelease() + Text(13),
                                    std::string(ProgramTitle), MessageIcon::Question,
                                    MessageButtons::YesNo) == MessageAnswer::Yes;
}

// Programs that the system installs are updated by the system; all that can be done is to tell who looks.
UpdateResult UpdateCheck::TellThatItCannotBeInstalled(const UpdateOffer& offer) {
    notice_ = fmt::format("{} ({})", Text(23), offer.Version.Numbers());
    if (const std::string& page = parts_.UpdateSite.VersionHistoryPage(); !page.empty())
        notice_ += "\n" + page;
    hooks_.ShowStatus(notice_);
    NoteThatUserWasTold();
    return UpdateResult::Postponed;
}

void UpdateCheck::OpenVersionHistory() {
    if (const std::string& page = parts_.UpdateSite.VersionHistoryPage(); !page.empty())
        static_cast<void>(parts_.Shell.OpenPage(page));
}

// What nobody has asked for is not told again at every opportunity.
void UpdateCheck::NoteThatUserWasTold() {
    if (automatic_) parts_.Settings.Set(Keys::UpdateCheckLast, DayOf(parts_.Clock.Now()));
}

// The program ends for the new one: an entry or a selection in another window would be lost.
void UpdateCheck::AwaitUser() {
    constexpr int pauseMilliseconds = 500;
    if (!automatic_ || !hooks_.UserIsBusy()) return;
    hooks_.ShowStatus(Text(37));
    while (hooks_.UserIsBusy() && !parts_.UpdateSite.IsCancelled())
        parts_.Events.Wait(pauseMilliseconds);
}

UpdateResult UpdateCheck::Start(const UpdateOffer& offer) {
    if (!automatic_ && !parts_.UpdateSite.IsCancelled()) {
        parts_.MessageBoxes.Show(Text(21), std::string(ProgramTitle), MessageIcon::Information,
                                 MessageButtons::Ok);
    }
    AwaitUser();
    if (parts_.UpdateSite.IsCancelled()) {
        parts_.UpdateDownload.Discard();
        return UpdateResult::Postponed;
    }
    parts_.Settings.Set(Keys::UpdateTaken, offer.Version.Numbers());
    return StartFetched() ? UpdateResult::Started : Fail(Text(15));
}

bool UpdateCheck::StartFetched() {
    if (!parts_.UpdateDownload.Commit()) return false;
    parts_.Settings.Set(Keys::UpdateStarts, 0);
    const std::filesystem::path program = parts_.UpdateDownload.NewProgram();
    if (StartNewProgram(program, parts_.Shell, parts_.InstanceLock, parts_.Events, parts_.Clock)) return true;
    parts_.Errors.WriteErrorLog("cannot be started: " + program.string(), "Update");
    parts_.UpdateDownload.Discard();
    return false;
}

} // namespace korvalin
