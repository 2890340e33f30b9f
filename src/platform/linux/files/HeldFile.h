#pragma once

#include "platform/linux/files/Descriptor.h"

#include <filesystem>

namespace korvalin {

/// A file opened for reading and appending that no other program holds or has replaced since, or the system's
/// error number.
struct HeldFile {
    Descriptor File;
    int Error = 0;
};

/// Opens the file, with `create` also one that is missing, and locks it in both ways that programs use (flock
/// and fcntl) until it is closed. Tries for `waitMilliseconds` while somebody else holds it; then the error
/// is EAGAIN.
HeldFile OpenHeld(const std::filesystem::path& path, bool create, int waitMilliseconds);

} // namespace korvalin
