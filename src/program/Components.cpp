#include "program/Components.h"

#include "base/Text.h"
#include "data/DataFolder.h"
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

Components::Components(Settings& settings, Language& language, MessageBoxes& messageBoxes, Shell& shell,
                       Events& events, DataFolder& dataFolder, Download download, std::string downloadPage)
    : settings_(settings),
      language_(language),
      messageBoxes_(messageBoxes),
      shell_(shell),
      events_(events),
      dataFolder_(dataFolder),
      download_(std::move(download)),
      downloadPage_(std::move(downloadPage)) {}

bool Components::CheckVBComponent(const std::string& fileName, bool silent) {
    if (shell_.ComponentPresent(fileName)) return true;
    if (silent || IsUnwanted(fileName)) return false;
    if (UserWants(fileName)) {
        Install();
    } else {
        ShowPieces(messageBoxes_, language_, {20, fileName, 21}, MessageIcon::Critical);
    }
    return false;
}

bool Components::IsUnwanted(const std::string& fileName) {
    return IsInternetControl(fileName) && settings_.Get(Keys::msinetNotWanted);
}

bool Components::UserWants(const std::string& fileName) {
    const int reason = IsInternetControl(fileName) ? 47 : 39;
    const bool wanted = ShowPieces(messageBoxes_, language_, {20, fileName, reason, 40},
                                   MessageIcon::Critical, MessageButtons::YesNo) == MessageAnswer::Yes;
    if (!wanted && IsInternetControl(fileName)) settings_.Set(Keys::msinetNotWanted, true);
    return wanted;
}

void Components::Install() {
    ShowPieces(messageBoxes_, language_, {41}, MessageIcon::Information);
    const std::filesystem::path setup = dataFolder_.GetDataPath() / setupName;
    if (download_ && download_(std::string(setupName), setup)) {
        static_cast<void>(shell_.StartProgram(setup));
        return;
    }
    if (!downloadPage_.empty()) static_cast<void>(shell_.OpenPage(downloadPage_));
    events_.ProcessPending();
    events_.Sleep(browserMilliseconds);
    ShowPieces(messageBoxes_, language_, {42}, MessageIcon::Warning);
}

} // namespace korvalin
