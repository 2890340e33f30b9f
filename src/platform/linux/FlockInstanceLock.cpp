#include "platform/linux/FlockInstanceLock.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>

namespace korvalin {

FlockInstanceLock::FlockInstanceLock(std::filesystem::path lockFile) : lockFile_(std::move(lockFile)) {}

bool FlockInstanceLock::PreviousInstanceRunning() {
    if (descriptor_) return false; // this process holds it already
    Descriptor descriptor(open(lockFile_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!descriptor) return false;
    if (flock(descriptor.Get(), LOCK_EX | LOCK_NB) != 0) return errno == EWOULDBLOCK;
    descriptor_ = std::move(descriptor);
    return false;
}

} // namespace korvalin
