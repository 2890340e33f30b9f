#include "program/Components.h"

#include "base/Text.h"
#include "data/DataFolder.h"
#include "inet/UpdateSite.h"
#include "lang/Language.h"
#include "lang/MessagePieces.h"
#include "platform/Events.h"
#include "platform/MessageBoxes.h"
#include "platform/Shell.h"
#include "settings/Settings.h"

namespace korvalin {
namespace {

constexpr std::string_view setupName = "Korvalin_Setup.exe";
// Time for the browser to come up before the message covers it.
constexpr int browserMilliseconds = 2000;

// The only control that the program can do without, so the user may refuse it for good.
bool IsInternetControl(std::string_view fileName) {
    return EqualsNoCase(fileName, "msinet.ocx");
}

} // namespace

bool Components::CheckVBComponent(const std::string& fileName, bool silent) {
    if (parts_.Shell.ComponentPresent(fileName)) return true;
    if (silent || IsUnwanted(fileName)) return false;
    if (UserWants(fileName)) {
        Install();
    } else {
        ShowPieces(parts_.MessageBoxes, parts_.Language, {20, fileName, 21}, MessageIcon::Critical);
    }
    return false;
}

bool Components::IsUnwanted(const std::string& fileName) {
    return IsInternetControl(fileName) && parts_.Settings.Get(Keys::msinetNotWanted);
}

bool Components::UserWants(const std::string& fileName) {
    const int reason = IsInternetControl(fileName) ? 47 : 39;
    const bool wanted = ShowPieces(parts_.MessageBoxes, parts_.Language, {20, fileName, reason, 40},
                                   MessageIcon::Critical, MessageButtons::YesNo) == MessageAnswer::Yes;
    if (!wanted && IsInternetControl(fileName)) parts_.Settings.Set(Keys::msinetNotWanted, true);
    return wanted;
}

void Components::Install() {
    ShowPieces(parts_.MessageBoxes, parts_.Language, {41}, MessageIcon::Information);
    const std::filesystem::path setup = parts_.DataFolder.GetDataPath() / setupName;
    if (parts_.UpdateSite.Download(std::string(setupName), setup)) {
        static_cast<void>(parts_.Shell.StartProgram(setup));
        return;
    }
    if (!downloadPage_.empty()) static_cast<void>(parts_.Shell.OpenPage(downloadPage_));
    parts_.Events.ProcessPending();
    parts_.Events.Sleep(browserMilliseconds);
    ShowPieces(parts_.MessageBoxes, parts_.Language, {42}, MessageIcon::Warning);
}

} // namespace korvalin
