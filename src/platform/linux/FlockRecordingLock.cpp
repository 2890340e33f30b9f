#include "platform/linux/FlockRecordingLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace korvalin {

bool FlockRecordingLock::Take(const std::filesystem::path& folder) {
    if (held_ && folder == folder_) return true;
    Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor) return true;
    if (flock(descriptor.Get(), LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
    held_ = std::move(descriptor);
    folder_ = folder;
    return true;
}

bool FlockRecordingLock::IsTaken(const std::filesystem::path& folder) {
    if (held_ && folder == folder_) return false;
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return descriptor && flock(descriptor.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

} // namespace korvalin
