#include "platform/linux/files/WholeFile.h"

#include "platform/linux/files/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>

namespace korvalin {

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path, std::size_t limit) {
    constexpr std::size_t block = 8192;
    // O_NONBLOCK: a pipe put in the file's place must not hold the program up.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) return std::nullopt;
    std::string content;
    std::size_t used = 0;
    while (used < limit) {
        // Files of /proc have no size to ask for: read until there is no more.
        content.resize(std::min(used + block, limit));
        const ssize_t count = read(file.Get(), content.data() + used, content.size() - used);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        used += static_cast<std::size_t>(count);
        if (count == 0) break;
    }
    content.resize(used);
    return content;
}

} // namespace korvalin
