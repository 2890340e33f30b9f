#include "platform/linux/LinuxShell.h"

#include "base/Text.h"
#include "platform/linux/DetachedProgram.h"
#include "platform/linux/XdgFolders.h"

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

// A page's address as it may be handed to another program: of the web, in one piece.
bool IsWebAddress(std::string_view address) {
    const bool web = StartsWithNoCase(address, "http://") || StartsWithNoCase(address, "https://");
    return web && std::none_of(address.begin(), address.end(), [](char c) { return c >= 0 && c <= ' '; });
}

} // namespace

LinuxShell::LinuxShell(std::string pageOpener) : pageOpener_(std::move(pageOpener)) {}

std::filesystem::path LinuxShell::SettingsFolder() {
    return ConfigFolder();
}

std::filesystem::path LinuxShell::SpecialFolder(int id) {
    return id == SpecialFolderCommonAppData ? XdgDataHome() : std::filesystem::path();
}

std::filesystem::path LinuxShell::SystemDirectory() {
    return "/usr/lib/";
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

int LinuxShell::PlatformId() {
    return PlatformSupported;
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
    return IsWebAddress(address) && StartDetached({pageOpener_, address});
}

} // namespace korvalin
