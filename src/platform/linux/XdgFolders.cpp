#include "platform/linux/XdgFolders.h"

#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

namespace korvalin {
namespace {

std::filesystem::path Home() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') return home;
    const passwd* entry = getpwuid(getuid());
    return entry != nullptr ? entry->pw_dir : "/";
}

std::filesystem::path FolderOf(const char* variable, const char* belowHome) {
    if (const char* value = std::getenv(variable); value != nullptr && *value == '/') return value;
    return Home() / belowHome;
}

} // namespace

std::filesystem::path XdgConfigHome() { return FolderOf("XDG_CONFIG_HOME", ".config"); }
std::filesystem::path XdgDataHome() { return FolderOf("XDG_DATA_HOME", ".local/share"); }

} // namespace korvalin
