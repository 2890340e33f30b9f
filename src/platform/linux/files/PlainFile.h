#pragma once

#include "platform/linux/files/Descriptor.h"

#include <filesystem>

namespace korvalin {

/// Opens a file in a folder that others may be able to write to: a link that stands in its place is not
/// followed (ELOOP), a pipe or a device is refused and not waited for (EINVAL, ENXIO). `flags` as open(2) has
/// them; a new file is its owner's alone. errno tells why there is none.
Descriptor OpenPlainFile(const std::filesystem::path& path, int flags);

} // namespace korvalin
