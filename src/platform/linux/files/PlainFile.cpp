#include "platform/linux/files/PlainFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace korvalin {

Descriptor OpenPlainFile(const std::filesystem::path& path, int flags) {
    constexpr mode_t privateFile = 0600;
    Descriptor file(open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, privateFile));
    struct stat status {};
    if (!file || fstat(file.Get(), &status) != 0) return {};
    if (S_ISREG(status.st_mode)) return file;
    file = Descriptor();
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return {};
}

} // namespace korvalin
