#include "platform/linux/files/FileLocks.h"

#include "platform/linux/files/PlainFile.h"
#include "platform/linux/files/PosixFiles.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
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

struct flock WholeFile() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
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

bool FileRecordingLock::Take(const std::filesystem::path& folder) {
    if (held_ && folder == folder_) return true;
    Descriptor file = OpenOwn(RecordingFile(folder), O_RDWR | O_CREAT);
    if (!file) return true;
    struct flock lock = WholeFile();
    if (fcntl(file.Get(), F_OFD_SETLK, &lock) != 0) return errno != EAGAIN && errno != EACCES;
    held_ = std::move(file);
    folder_ = folder;
    return true;
}

bool FileRecordingLock::IsTaken(const std::filesystem::path& folder) {
    if (held_ && folder == folder_) return false;
    const Descriptor file = OpenOwn(RecordingFile(folder), O_RDONLY);
    struct flock conflict = WholeFile();
    return file && fcntl(file.Get(), F_OFD_GETLK, &conflict) == 0 && conflict.l_type != F_UNLCK;
}

} // namespace korvalin
