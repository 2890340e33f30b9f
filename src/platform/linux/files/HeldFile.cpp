#include "platform/linux/files/HeldFile.h"

#include "platform/linux/files/PlainFile.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

namespace korvalin {
namespace {

constexpr std::chrono::milliseconds pause{5};

// 0, EAGAIN while somebody else holds it. A file system that knows no locks holds nobody off.
int Lock(int file) {
    if (flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return EAGAIN;
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    if (fcntl(file, F_OFD_SETLK, &whole) != 0 && (errno == EAGAIN || errno == EACCES)) return EAGAIN;
    return 0;
}

// Whoever held the file before may have put another one in its place.
bool IsStillAt(const std::filesystem::path& path, int file) {
    struct stat opened {};
    struct stat named {};
    return fstat(file, &opened) == 0 && stat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
           opened.st_dev == named.st_dev;
}

HeldFile TryOnce(const std::filesystem::path& path, bool create) {
    Descriptor file = OpenPlainFile(path, O_RDWR | O_APPEND | (create ? O_CREAT : 0));
    if (!file) return {Descriptor(), errno};
    int error = Lock(file.Get());
    if (error == 0 && !IsStillAt(path, file.Get())) error = EAGAIN;
    return {std::move(file), error};
}

} // namespace

HeldFile OpenHeld(const std::filesystem::path& path, bool create, int waitMilliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(waitMilliseconds);
    for (;;) {
        HeldFile held = TryOnce(path, create);
        if (held.Error != EAGAIN || std::chrono::steady_clock::now() >= end) return held;
        std::this_thread::sleep_for(pause);
    }
}

} // namespace korvalin
