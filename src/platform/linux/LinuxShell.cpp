#include "platform/linux/LinuxShell.h"

#include "base/Text.h"
#include "platform/linux/XdgFolders.h"

#include <cstdlib>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace korvalin {
namespace {

// Starts a program as a child of init: nothing to wait for later. A failing exec comes back through the pipe, which a
// successful one closes.
bool StartDetached(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0) return false;
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        if (fork() == 0) {
            execvp(arguments[0], arguments.data());
            static_cast<void>(!write(report[1], "!", 1));
        }
        _exit(0);
    }
    close(report[1]);
    char failed = 0;
    const bool started = child > 0 && read(report[0], &failed, 1) == 0;
    close(report[0]);
    if (child > 0) waitpid(child, nullptr, 0);
    return started;
}

} // namespace

std::filesystem::path LinuxShell::SpecialFolder(int id) {
    return id == SpecialFolderCommonAppData ? XdgDataHome() : std::filesystem::path();
}

std::filesystem::path LinuxShell::ExecutablePath() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

std::string LinuxShell::UserLanguage() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value == nullptr || *value == 0) continue;
        const std::string language = ToLower(std::string(value).substr(0, 2));
        return language.size() == 2 && language != "c." && std::string(value) != "POSIX" ? language : "en";
    }
    return "en";
}

bool LinuxShell::StartProgram(const std::filesystem::path& program) { return StartDetached({program.string()}); }

bool LinuxShell::OpenPage(const std::string& address) {
    if (!StartsWithNoCase(address, "https://") && !StartsWithNoCase(address, "http://")) return false;
    return StartDetached({"xdg-open", address});
}

} // namespace korvalin
