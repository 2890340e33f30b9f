#include "settingsdlg/AutoStart.h"

#include "base/ProgramTitle.h"
#include "errors/Errors.h"
#include "platform/Registry.h"
#include "settings/Settings.h"

namespace korvalin {

AutoStartEntry::AutoStartEntry(Settings& settings, Registry& registry,
                               const std::filesystem::path& executable)
    : settings_(settings), registry_(registry), executable_(executable) {}

void AutoStartEntry::AutoStart(bool enable) {
    settings_.Set(Keys::AutoStart, enable);
    const std::filesystem::path program = executable_.parent_path() / executable_.stem();
    // An empty text deletes the value.
    registry_.RegWriteString(RunKeyPath, ProgramTitle, enable ? program.string() : std::string());
}

} // namespace korvalin
