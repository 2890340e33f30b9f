#include "platform/linux/system/XdgFolders.h"

#include "platform/linux/system/PasswdEntry.h"

#include <cstdlib>
#include <string_view>

namespace korvalin {
namespace {

std::filesystem::path HomeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') return home;
    const std::string home = FindPasswdEntry().HomeFolder;
    return home.empty() ? "/" : home;
}

std::filesystem::path FolderOf(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value == '/' ? value : "";
}

std::filesystem::path BaseFolder(const char* variable, std::string_view belowHome) {
    const std::filesystem::path folder = FolderOf(variable);
    return folder.empty() ? HomeFolder() / belowHome : folder;
}

} // namespace

std::filesystem::path XdgConfigHome() {
    return BaseFolder("XDG_CONFIG_HOME", ".config");
}
std::filesystem::path XdgDataHome() {
    return BaseFolder("XDG_DATA_HOME", ".local/share");
}
std::filesystem::path XdgRuntimeFolder() {
    return FolderOf("XDG_RUNTIME_DIR");
}
std::filesystem::path ConfigFolder() {
    return XdgConfigHome() / "korvalin";
}
std::filesystem::path AutostartFolder() {
    return XdgConfigHome() / "autostart";
}

} // namespace korvalin
