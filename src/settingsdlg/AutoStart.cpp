#include "settingsdlg/AutoStart.h"

#include "base/ProgramTitle.h"
#include "errors/Errors.h"
#include "platform/Registry.h"
#include "settings/Settings.h"

namespace korvalin {

AutoStartEntry::AutoStartEntry(Settings& settings, Registry& registry,
                               const std::filesystem::path& executable)
    : settings_(settings), registry_(registry), executable_(executable) {}

bool AutoStartEntry::AutoStart(bool enable) {
    const std::filesystem::path program = executable_.parent_path() / executable_.stem();
    // An empty text deletes the value.
    const bool written =
        registry_.RegWriteString(RunKeyPath, ProgramTitle, enable ? program.string() : std::string());
    const bool nothingToDelete = !enable && registry_.RegReadString(RunKeyPath, ProgramTitle).empty();
    // What was chosen before is not asked for anew: the desktop's own list may have switched it off since.
    if (!written && !nothingToDelete && enable != settings_.Get(Keys::AutoStart)) return false;
    settings_.Set(Keys::AutoStart, enable);
    return true;
}

} // namespace korvalin
