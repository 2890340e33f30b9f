#include "platform/linux/files/FileLocks.h"

#include "platform/linux/files/PlainFile.h"
#include "platform/linux/files/PosixFiles.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace korvalin {
namespace {

std::filesystem::path LockFile(const std::filesystem::path& folder, std::string_view executableName) {
    return folder / fmt::format("instance-{}.lock", executableName);
}

std::filesystem::path RecordingFile(const std::filesystem::path& folder) {
    return folder / fmt::format("Korvalin_Recording-{}.lock", geteuid());
}

// Empty also when the file is somebody else's: who put it there shall not keep the user from recording.
Descriptor OpenOwn(const std::filesystem::path& path, int flags) {
    Descriptor file = OpenPlainFile(path, flags);
    struct stat status {};
    const bool isOwn = file && fstat(file.Get(), &status) == 0 && status.st_uid == geteuid();
    return isOwn ? std::move(file) : Descriptor();
}

// Bytes of the lock's file, which need not be there. To ask for a lock does not take it.
constexpr off_t wholeFile = 0;
constexpr off_t runningByte = 1;
constexpr off_t readyByte = 2;

struct flock LockOf(off_t byte) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = byte == wholeFile ? 0 : 1;
    return lock;
}

bool TakeLock(const Descriptor& file, off_t byte) {
    struct flock lock = LockOf(byte);
    return fcntl(file.Get(), F_OFD_SETLK, &lock) == 0;
}

bool AnotherHasIt() {
    return errno == EAGAIN || errno == EACCES;
}

bool IsLocked(const Descriptor& file, off_t byte) {
    struct flock conflict = LockOf(byte);
    return file && fcntl(file.Get(), F_OFD_GETLK, &conflict) == 0 && conflict.l_type != F_UNLCK;
}

} // namespace

FileInstanceLock::FileInstanceLock(const std::filesystem::path& folder, std::string_view executableName)
    : folder_(folder), file_(LockFile(folder, executableName)) {}

bool FileInstanceLock::IsRunning(const std::string& executableName) {
    return IsLocked(OpenPlainFile(LockFile(folder_, executableName), O_RDONLY), runningByte);
}

void FileInstanceLock::SayReady() {
    if (held_) static_cast<void>(TakeLock(held_, readyByte));
}

bool FileInstanceLock::IsReady(const std::string& executableName) {
    return IsLocked(OpenPlainFile(LockFile(folder_, executableName), O_RDONLY), readyByte);
}

bool FileInstanceLock::PreviousInstanceRunning() {
    if (held_) return false;
    if (PosixFiles().CreateFolders(file_.parent_path()) != 0) return false;
    Descriptor file(open(file_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file) return false;
    if (!TakeLock(file, runningByte)) return AnotherHasIt();
    held_ = std::move(file);
    return false;
}

bool FileRecordingLock::Take(const std::filesystem::path& folder) {
    if (held_ && folder == folder_) return true;
    Descriptor file = OpenOwn(RecordingFile(folder), O_RDWR | O_CREAT);
    if (!file) return true;
    if (!TakeLock(file, wholeFile)) return !AnotherHasIt();
    held_ = std::move(file);
    folder_ = folder;
    return true;
}

bool FileRecordingLock::IsTaken(const std::filesystem::path& folder) {
    if (held_ && folder == folder_) return false;
    return IsLocked(OpenOwn(RecordingFile(folder), O_RDONLY), wholeFile);
}

} // namespace korvalin
