#include "program/Startup.h"

#include "base/Paths.h"
#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "data/DataFolder.h"
#include "errors/Errors.h"
#include "inet/UpdateSite.h"
#include "lang/Language.h"
#include "lang/MessagePieces.h"
#include "platform/Clock.h"
#include "platform/InstanceLock.h"
#include "platform/MessageBoxes.h"
#include "platform/Shell.h"
#include "program/Components.h"
#include "program/UpdateInstallation.h"
#include "settings/Settings.h"
#include "traffic/LineRecord.h"

namespace korvalin {
namespace {

// A new version asks for updates soon: its check counts as this many days old.
constexpr int daysSinceCheck = 60;

} // namespace

Startup::Startup(const Parts& parts, const ProgramVersion& version)
    : parts_(parts), version_(version), versionText_(version.Text()) {}

// An error in one step is reported and ends only that step.
template <typename F>
bool Startup::Step(F&& step) {
    return parts_.Errors.Step("Main", std::forward<F>(step));
}

bool Startup::Main() {
    if (AnotherInstanceRefused()) return false;
    // Reading it stores the present moment when there is no valid date yet.
    Step([this] { static_cast<void>(parts_.Settings.Get(Keys::FirstRunDate)); });
    if (UpdateTakesOver()) return false;
    Step([this] { OfferLanguageFile(); });
    if (!LoadTexts() || !PlatformServes()) return false;
    Step([this] { KeepUpdateNextInPast(); });
    Step([this] { NoteVersion(); });
    Step([this] { CheckComponents(); });
    Step([this] { parts_.LineState = LineState(); });
    Step(hooks_.LoadUserVar);
    Step([this] { parts_.DataFolder.DeleteStatistics(); });
    return true;
}

bool Startup::AnotherInstanceRefused() {
    const bool running = parts_.InstanceLock.PreviousInstanceRunning();
    return running && !parts_.Settings.Get(Keys::MultiInstance);
}

bool Startup::UpdateTakesOver() {
    bool ends = false;
    Step([&] { ends = parts_.UpdateInstallation.Run(); });
    return ends;
}

// ---- the language file; these messages cannot come from it

bool Startup::UserWantsLanguageFile(std::string_view problem) {
    const std::string question =
        std::string(problem) + "\n\nPlease make sure you are connected to the internet before clicking ok.";
    return parts_.MessageBoxes.Show(question, std::string(ProgramTitle), MessageIcon::Question,
                                    MessageButtons::YesNo) == MessageAnswer::Yes;
}

bool Startup::DownloadLanguageFile() {
    const std::filesystem::path file = parts_.Language.LanguageFilePath();
    return parts_.UpdateSite.Download(file.filename().string(), file);
}

// Without it the next step fails and asks once more.
void Startup::OfferLanguageFile() {
    const std::filesystem::path file = parts_.Language.LanguageFilePath();
    if (FileExists(file) || !parts_.UpdateSite.IsThere()) return;
    const std::string problem = "Language file " + file.string() +
                                " not found. Program can not be run.\n\n"
                                "Do you want to load the language file from the internet?";
    if (UserWantsLanguageFile(problem)) static_cast<void>(DownloadLanguageFile());
}

bool Startup::LoadTexts() {
    if (parts_.Language.InitProgramTexts()) return true;
    if (!parts_.UpdateSite.IsThere()) return false; // the language has said what is missing
    bool loaded = false;
    Step([&] {
        loaded = UserWantsLanguageFile("Language file corrupted or incomplete. Program can not be run. "
                                       "Do you want to load the language file from the internet?") &&
                 DownloadLanguageFile() && parts_.Language.InitProgramTexts();
    });
    return loaded;
}

// ---- the rest

bool Startup::PlatformServes() {
    if (parts_.Shell.IsSupported()) return true;
    ShowPieces(parts_.MessageBoxes, parts_.Language, {1}, MessageIcon::Critical);
    return false;
}

// A date ahead, left by a clock that was wrong, would hold back the update check for as long.
void Startup::KeepUpdateNextInPast() {
    const Date now = parts_.Clock.Now();
    if (parts_.Settings.Get(Keys::UpdateNext) > now) parts_.Settings.Set(Keys::UpdateNext, now);
}

void Startup::NoteVersion() {
    Settings& settings = parts_.Settings;
    const std::string stored = settings.Get(Keys::PrgVersion);
    if (EqualsNoCase(stored, versionText_)) return;
    // Another series may need the control that the user refused once: let it be asked again.
    if (!StartsWithNoCase(stored, version_.Series())) settings.Set(Keys::msinetNotWanted, false);
    settings.Set(Keys::PrgVersion, versionText_);
    settings.Set(Keys::UpdateCheckLast, DayOf(parts_.Clock.Now()) - daysSinceCheck);
}

void Startup::CheckComponents() {
    for (const char* fileName : {"msinet.ocx", "mscomctl.ocx", "tabctl32.ocx"}) {
        parts_.Components.CheckVBComponent(fileName, false);
    }
}

} // namespace korvalin
