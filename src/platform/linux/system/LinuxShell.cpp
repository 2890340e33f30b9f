#include "platform/linux/system/LinuxShell.h"

#include "base/Text.h"
#include "platform/linux/system/DetachedProgram.h"
#include "platform/linux/system/XdgFolders.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace korvalin {
namespace {

// "de_DE.UTF-8" gives "de"; empty for "C", "POSIX" and languages without a two-letter code.
std::string LanguageOf(std::string_view localeName) {
    const std::string language = ToLower(localeName.substr(0, localeName.find_first_of("_.@")));
    const bool letters =
        std::all_of(language.begin(), language.end(), [](char c) { return c >= 'a' && c <= 'z'; });
    return language.size() == 2 && letters ? language : std::string();
}

bool IsWebAddress(std::string_view address) {
    return StartsWithNoCase(address, "http://") || StartsWithNoCase(address, "https://");
}

// An address as it may be handed to another program: it begins with its scheme, so it is neither an option
// nor a path, and it is in one piece.
bool IsAddress(std::string_view address) {
    constexpr std::string_view schemeMarks = "abcdefghijklmnopqrstuvwxyz0123456789+-.";
    const std::string scheme = ToLower(address.substr(0, address.find(':')));
    return scheme.size() + 1 < address.size() && scheme.find_first_not_of(schemeMarks) == std::string::npos &&
           !scheme.empty() && scheme[0] >= 'a' && scheme[0] <= 'z' &&
           std::none_of(address.begin(), address.end(), [](char c) { return c >= 0 && c <= ' '; });
}

} // namespace

LinuxShell::LinuxShell(std::string opener) : opener_(std::move(opener)) {}

std::filesystem::path LinuxShell::SettingsFolder() {
    return ConfigFolder();
}

std::filesystem::path LinuxShell::CommonAppData() {
    return XdgDataHome();
}

bool LinuxShell::ComponentPresent(const std::string&) {
    return true;
}

std::filesystem::path LinuxShell::ExecutablePath() {
    std::error_code error;
    const std::string path = std::filesystem::read_symlink("/proc/self/exe", error).string();
    // The kernel marks a file that was replaced by an update while the program runs.
    constexpr std::string_view mark = " (deleted)";
    return path.ends_with(mark) ? path.substr(0, path.size() - mark.size()) : path;
}

bool LinuxShell::IsSupported() {
    return true;
}

std::string LinuxShell::UserLanguage() {
    std::string language;
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* name = std::getenv(variable);
        if (name == nullptr || *name == 0) continue;
        language = LanguageOf(name);
        break; // the first one that is set decides, whatever it says
    }
    return language.empty() ? "en" : language;
}

bool LinuxShell::StartProgram(const std::filesystem::path& program) {
    return StartDetached({program.string()});
}

bool LinuxShell::OpenPage(const std::string& address) {
    return IsWebAddress(address) && OpenAddress(address);
}

bool LinuxShell::OpenAddress(const std::string& address) {
    return IsAddress(address) && StartDetached({opener_, address});
}

} // namespace korvalin
