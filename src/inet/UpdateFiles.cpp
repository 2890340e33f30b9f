#include "inet/UpdateFiles.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <system_error>

namespace korvalin {

namespace fs = std::filesystem;

std::string KeptProgramName(const ProgramVersion& version) {
    return fmt::format("Korvalin_V{}_{}_{}.exe", version.Major, version.Minor, version.Revision);
}

std::string KeptLanguageName(const ProgramVersion& version) {
    return fmt::format("KorvalinLng_V{}_{}_{}.txt", version.Major, version.Minor, version.Revision);
}

bool IsWorthStarting(const fs::path& newProgram, const fs::path& program) {
    std::error_code currentUnknown;
    std::error_code newUnknown;
    const auto currentTime = fs::last_write_time(program, currentUnknown);
    const auto newTime = fs::last_write_time(newProgram, newUnknown);
    if (newUnknown || (!currentUnknown && newTime <= currentTime)) return false;
    const auto length = fs::file_size(newProgram, newUnknown);
    return !newUnknown && length >= ShortestProgram;
}

bool IsProgramName(std::string_view name) {
    return EndsWithNoCase(name, ".exe");
}

void TakePermissions(const fs::path& file, bool isProgram, const fs::path& runningProgram) {
    constexpr fs::perms run = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    std::error_code ignored;
    fs::perms taken = fs::status(runningProgram, ignored).permissions() & fs::perms::all;
    if (ignored) return;
    if (!isProgram) taken &= ~run;
    fs::permissions(file, taken, fs::perm_options::add, ignored);
}

bool IsExecutable(const fs::path& file) {
    std::error_code ignored;
    return (fs::status(file, ignored).permissions() & fs::perms::owner_exec) != fs::perms::none;
}

} // namespace korvalin
