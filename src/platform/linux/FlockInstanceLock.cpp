#include "platform/linux/FlockInstanceLock.h"

#include "platform/linux/PosixFiles.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/file.h>

namespace korvalin {

namespace {

std::filesystem::path LockFile(const std::filesystem::path& folder, std::string_view executableName) {
    return folder / fmt::format("instance-{}.lock", executableName);
}

} // namespace

FlockInstanceLock::FlockInstanceLock(const std::filesystem::path& folder, std::string_view executableName)
    : folder_(folder), file_(LockFile(folder, executableName)) {}

bool FlockInstanceLock::IsRunning(const std::string& executableName) {
    const Descriptor file(open(LockFile(folder_, executableName).c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
    return file && flock(file.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

bool FlockInstanceLock::PreviousInstanceRunning() {
    if (held_) return false;
    if (PosixFiles().CreateFolders(file_.parent_path()) != 0) return false;
    Descriptor file(open(file_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file) return false;
    if (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) return errno == EWOULDBLOCK;
    held_ = std::move(file);
    return false;
}

} // namespace korvalin
