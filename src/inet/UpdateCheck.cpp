#include "inet/UpdateCheck.h"

#include "base/FlagGuard.h"
#include "base/Locale.h"
#include "base/Paths.h"
#include "base/ProgramTitle.h"
#include "base/Text.h"
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
#include "platform/InstanceLock.h"
#include "platform/MessageBoxes.h"
#include "platform/Shell.h"
#include "settings/Settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <system_error>

namespace korvalin {
namespace {

constexpr const char* generalPage = "update_general.html";
constexpr int daysWithoutCheck = 90; // the maker signs anew within that time

// The notices are kept by the number of their text in "modInternet".
constexpr int folderIsReadOnly = 23;
constexpr int wasTaken = 161;
constexpr int placeIsUnsafe = 162;
constexpr int noCheckSucceeds = 163;
constexpr int comesWithNextStart = 164;
constexpr std::array allNotices = {folderIsReadOnly, wasTaken, placeIsUnsafe, noCheckSucceeds,
                                   comesWithNextStart};

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
    if (IsWaiting() && !automatic) {
        automatic_ = false;
        return UpdateResult::NothingDone;
    }
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
    if (!parts_.UpdateSite.IsCancelled()) {
        NoteResult(result);
        return result;
    }
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
    const auto channel = automatic_ ? UpdatePage::Channel::Automatic : UpdatePage::Channel::OnDemand;
    // The maker's word is asked for in any case: whoever gets at the page could keep a version back with it.
    if (!parts_.UpdateSite.LoadManifest()) return Fail(Text(5) + FaultText());
    const auto offer = page.IsUpgradable() ? page.Offer(channel) : UpdateOffer{parts_.Version, {}};
    if (!offer) {
        parts_.Errors.WriteErrorLog("the offer of the page cannot be read", "Update");
        return Fail(Text(27));
    }
    const auto signedOffer = parts_.UpdateSite.Signed(*offer, channel);
    if (!signedOffer) return Fail(Text(5) + FaultText());
    if (!page.IsUpgradable()) return TellThatNothingIsOffered(page);
    if (IsNewer(offer->Version, parts_.Version)) return Update(*signedOffer, page);
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
    case UpdateFault::NotChecked: return Text(165);
    case UpdateFault::NoAnswer: return Text(31);
    case UpdateFault::Expired: return Text(32);
    case UpdateFault::OtherVersion: return Text(33);
    case UpdateFault::NotSaved: return Text(34);
    case UpdateFault::Damaged: return Text(35);
    case UpdateFault::None: break;
    }
    return {};
}

UpdateResult UpdateCheck::TellThatNothingIsOffered(const UpdatePage& page) {
    hooks_.ShowStatus(Text(8));
    // A page that nobody has signed could bring anything from this machine into the browser.
    if (!automatic_ && !parts_.UpdateSite.HasKey()) ShowPage(page);
    return UpdateResult::NoUpgradeMark;
}

void UpdateCheck::ShowPage(const UpdatePage& page) {
    const std::filesystem::path file = parts_.DataFolder.GetDataPath() / "Temp.htm";
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
    if (parts_.Files.Replace(file, page.Text()))
        static_cast<void>(parts_.Shell.OpenAddress(FileAddress(file.string())));
}

UpdateResult UpdateCheck::Update(const UpdateOffer& offer, const UpdatePage& page) {
    switch (parts_.UpdateDownload.LookAtPlace()) {
    // Programs that the system installs are updated by the system.
    case UpdateDownload::Place::ReadOnly: return TellOf(offer, folderIsReadOnly);
    case UpdateDownload::Place::Unsafe: return TellOf(offer, placeIsUnsafe);
    case UpdateDownload::Place::Good: break;
    }
    if (automatic_ && WasTaken(offer)) {
        const bool waits = FileExists(parts_.UpdateDownload.NewProgram());
        return TellOf(offer, waits ? comesWithNextStart : wasTaken);
    }
    if (MustAsk()) {
        AwaitUser(160);
        if (parts_.UpdateSite.IsCancelled()) return UpdateResult::Postponed;
        if (!UserWants(page)) {
            NoteThatUserWasTold();
            return UpdateResult::Postponed;
        }
    }
    switch (parts_.UpdateDownload.Run(offer, page)) {
    case UpdateDownload::Outcome::TooEarly: return TellToWait();
    case UpdateDownload::Outcome::Failed: return Fail(Text(15) + FaultText());
    case UpdateDownload::Outcome::Ready: break;
    }
    return Start(offer);
}

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

// No page comes up by itself and nothing is asked; all that can be done is to tell who looks.
UpdateResult UpdateCheck::TellOf(const UpdateOffer& offer, int text) {
    SetNotice(text, offer.Version.Numbers());
    hooks_.ShowStatus(Notice());
    NoteThatUserWasTold();
    return UpdateResult::Postponed;
}

void UpdateCheck::SetNotice(int text, const std::string& version) {
    parts_.Settings.Set(Keys::UpdateNotice, fmt::format("{} {}", text, version));
}

std::string UpdateCheck::Notice() {
    if (IsWaiting()) return Text(waitingText_);
    if (!parts_.UpdateSite.IsThere()) return Text(22);
    const std::string kept = parts_.Settings.Get(Keys::UpdateNotice);
    const std::vector<std::string_view> fields = Split(kept, ' ', 2);
    const auto* const number = std::find_if(allNotices.begin(), allNotices.end(), [&](int known) {
        return std::to_string(known) == fields.front();
    });
    const auto version = ReadVersion(fields.back());
    if (number == allNotices.end() || (version && !IsNewer(*version, parts_.Version))) return {};
    const std::string& page = parts_.UpdateSite.VersionHistoryPage();
    return Text(*number) + (version ? " (" + version->Numbers() + ")" : "") +
           (page.empty() ? "" : "\n" + page);
}

// A site that is kept from saying anything true says nothing new for ever.
void UpdateCheck::NoteResult(UpdateResult result) {
    if (result == UpdateResult::Newest) return parts_.Settings.Remove(Keys::UpdateNotice);
    const bool isFailure = result == UpdateResult::Failed || result == UpdateResult::Offline;
    const Date last = parts_.Settings.Get(Keys::UpdateCheckLast);
    if (!automatic_ || !isFailure || last == 0 || DayOf(parts_.Clock.Now()) - last <= daysWithoutCheck)
        return;
    SetNotice(noCheckSucceeds, "");
    if (hooks_.UserIsBusy()) return;
    NoteThatUserWasTold();
    parts_.MessageBoxes.Show(Notice(), std::string(ProgramTitle), MessageIcon::Warning, MessageButtons::Ok);
}

void UpdateCheck::OpenVersionHistory() {
    if (const std::string& page = parts_.UpdateSite.VersionHistoryPage(); !page.empty())
        static_cast<void>(parts_.Shell.OpenPage(page));
}

// What nobody has asked for is not told again at every opportunity.
void UpdateCheck::NoteThatUserWasTold() {
    if (automatic_) parts_.Settings.Set(Keys::UpdateCheckLast, DayOf(parts_.Clock.Now()));
}

// A question would take the keyboard away from the user, and the program ends for the new one: an entry or a
// selection in another window would be lost.
void UpdateCheck::AwaitUser(int text) {
    constexpr int pauseMilliseconds = 500;
    if (!automatic_ || !hooks_.UserIsBusy()) return;
    waitingText_ = text;
    hooks_.ShowStatus(Text(text));
    hooks_.ShowRunning(false); // the check can be asked for
    while (automatic_ && hooks_.UserIsBusy() && !parts_.UpdateSite.IsCancelled())
        parts_.Events.Wait(pauseMilliseconds);
    waitingText_ = 0;
    hooks_.ShowRunning(true);
}

UpdateResult UpdateCheck::Start(const UpdateOffer& offer) {
    AwaitUser(37);
    if (!automatic_ && !parts_.UpdateSite.IsCancelled()) {
        parts_.MessageBoxes.Show(Text(21), std::string(ProgramTitle), MessageIcon::Information,
                                 MessageButtons::Ok);
    }
    if (parts_.UpdateSite.IsCancelled()) {
        parts_.UpdateDownload.Discard();
        return UpdateResult::Postponed;
    }
    if (!parts_.UpdateDownload.Commit()) return Fail(Text(15) + Text(34));
    if (!StartFetched(offer)) return Fail(Text(166));
    const std::string program = parts_.UpdateDownload.NewProgram().filename().string();
    if (parts_.InstanceLock.IsReady(program)) return UpdateResult::Started;
    return TellOf(offer, comesWithNextStart); // it has lost patience with the user
}

// The number is stored first: a program that is not the version it is offered as would be installed again and
// again.
bool UpdateCheck::StartFetched(const UpdateOffer& offer) {
    const std::string takenBefore = parts_.Settings.Get(Keys::UpdateTaken);
    parts_.Settings.Set(Keys::UpdateStarts, 1);
    parts_.Settings.Set(Keys::UpdateTaken, offer.Version.Numbers());
    const std::filesystem::path program = parts_.UpdateDownload.NewProgram();
    if (StartNewProgram(program, parts_.Shell, parts_.InstanceLock, parts_.Events, parts_.Clock)) {
        AwaitUser(37); // windows were alive meanwhile
        if (!parts_.UpdateSite.IsCancelled()) return true;
    } else {
        parts_.Errors.WriteErrorLog("cannot be started: " + program.string(), "Update");
    }
    parts_.UpdateDownload.Discard(); // one that runs finds that it is not wanted any more
    parts_.Settings.Set(Keys::UpdateTaken, takenBefore);
    return false;
}

} // namespace korvalin
