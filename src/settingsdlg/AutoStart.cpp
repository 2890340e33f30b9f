#include "settingsdlg/AutoStart.h"

#include "base/ProgramTitle.h"
#include "errors/Errors.h"
#include "settings/RegistryPrimitives.h"
#include "settings/Settings.h"

namespace korvalin {
namespace {

constexpr std::string_view runKeyPath = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";

} // namespace

AutoStartEntry::AutoStartEntry(Settings& settings, RegistryPrimitives& registry,
                               const std::filesystem::path& executable)
    : settings_(settings), registry_(registry), executable_(executable) {}

void AutoStartEntry::AutoStart(bool enable) {
    settings_.Set(Keys::AutoStart, enable);
    const std::filesystem::path program = executable_.parent_path() / executable_.stem();
    // An empty text deletes the value.
    registry_.RegWriteString(runKeyPath, ProgramTitle, enable ? program.string() : std::string());
}

} // namespace korvalin
