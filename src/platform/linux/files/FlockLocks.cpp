#include "platform/linux/files/FlockLocks.h"

#include "platform/linux/files/PosixFiles.h"

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

Descriptor OpenFolder(const std::filesystem::path& folder) {
    return Descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

struct flock WholeFolder(short type) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    return lock;
}

// A shared lock beside the exclusive one, which nobody can look at without trying to take it.
void PutUpSign(int folder) {
    struct flock sign = WholeFolder(F_RDLCK);
    static_cast<void>(fcntl(folder, F_OFD_SETLK, &sign));
}

bool SeesSign(int folder) {
    struct flock conflict = WholeFolder(F_WRLCK);
    return fcntl(folder, F_OFD_GETLK, &conflict) == 0 && conflict.l_type != F_UNLCK;
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

bool FlockRecordingLock::Take(const std::filesystem::path& folder) {
    if (held_ && folder == folder_) return true;
    Descriptor descriptor = OpenFolder(folder);
    if (!descriptor) return true;
    if (flock(descriptor.Get(), LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
    PutUpSign(descriptor.Get());
    held_ = std::move(descriptor);
    folder_ = folder;
    return true;
}

bool FlockRecordingLock::IsTaken(const std::filesystem::path& folder) {
    if (held_ && folder == folder_) return false;
    const Descriptor descriptor = OpenFolder(folder);
    return descriptor && SeesSign(descriptor.Get());
}

} // namespace korvalin
