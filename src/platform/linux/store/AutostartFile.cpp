#include "platform/linux/store/AutostartFile.h"

#include "base/ProgramTitle.h"
#include "platform/Files.h"
#include "platform/linux/files/WholeFile.h"
#include "platform/linux/store/DesktopEntry.h"

#include <unistd.h>

namespace korvalin {
namespace {

bool IsExecutableFile(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

// The program registers "<folder>/Korvalin", its name without ".exe". What can be started is that file if it
// exists, else the launcher beside it, else the program file itself.
std::filesystem::path StartableFile(const std::filesystem::path& registered) {
    if (IsExecutableFile(registered)) return registered;
    const std::filesystem::path launcher = registered.parent_path() / "korvalin";
    return IsExecutableFile(launcher) ? launcher : std::filesystem::path(registered.string() + ".exe");
}

} // namespace

AutostartFile::AutostartFile(Files& files, const std::filesystem::path& autostartFolder)
    : files_(files), file_(autostartFolder / "korvalin.desktop") {}

std::optional<std::string> AutostartFile::Read() const {
    const std::optional<std::string> entry = ReadWholeFile(file_);
    return entry ? ReadAutostartEntry(*entry) : std::nullopt;
}

bool AutostartFile::Write(std::string_view registeredPath) {
    if (files_.CreateFolders(file_.parent_path()) != 0) return false;
    const std::string executable = StartableFile(std::filesystem::path(registeredPath)).string();
    const std::string entry = WriteAutostartEntry(ProgramTitle, executable, registeredPath);
    // Asked for at every start: what the user has switched off in the desktop's own list stays off.
    if (const std::optional<std::string> existing = ReadWholeFile(file_)) {
        if (IsSwitchedOff(*existing)) return false;
        if (*existing == entry) return true;
    }
    return files_.Replace(file_, entry);
}

bool AutostartFile::Remove() {
    return unlink(file_.c_str()) == 0;
}

} // namespace korvalin
