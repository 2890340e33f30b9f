#include "platform/linux/PosixFiles.h"

#include "platform/linux/Descriptor.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

constexpr mode_t privateFile = 0600;
constexpr mode_t privateFolder = 0700;

bool WriteAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// A rename is on the medium only when its folder is.
bool SyncFolder(const fs::path& folder) {
    const Descriptor descriptor(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return descriptor && fsync(descriptor.Get()) == 0;
}

// Writes a file of its own beside `path`, flushes it and puts it in its place.
bool WriteBeside(const fs::path& path, mode_t mode, const std::function<bool(int descriptor)>& fill) {
    std::string beside = path.string() + ".XXXXXX";
    const Descriptor descriptor(mkostemp(beside.data(), O_CLOEXEC));
    if (!descriptor) return false;
    const bool written = fill(descriptor.Get()) && fchmod(descriptor.Get(), mode) == 0 && fsync(descriptor.Get()) == 0 &&
                         rename(beside.c_str(), path.c_str()) == 0;
    if (!written) {
        unlink(beside.c_str());
        return false;
    }
    SyncFolder(path.parent_path());
    return true;
}

mode_t ModeOf(const fs::path& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : privateFile;
}

} // namespace

bool PosixFiles::Append(const fs::path& path, std::string_view lines) {
    const Descriptor descriptor(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW, privateFile));
    if (!descriptor) return false;
    ssize_t written = 0;
    do {
        written = write(descriptor.Get(), lines.data(), lines.size());
    } while (written < 0 && errno == EINTR);
    if (written == static_cast<ssize_t>(lines.size())) return true;
    if (written > 0) {
        // A full disk took a part: cut it off, unless another program has appended since.
        const off_t end = lseek(descriptor.Get(), 0, SEEK_CUR);
        struct stat status {};
        if (end >= written && fstat(descriptor.Get(), &status) == 0 && status.st_size == end) {
            static_cast<void>(!ftruncate(descriptor.Get(), end - written));
        }
    }
    return false;
}

bool PosixFiles::Replace(const fs::path& path, std::string_view content) {
    return WriteBeside(path, ModeOf(path), [&](int descriptor) { return WriteAll(descriptor, content); });
}

bool PosixFiles::Copy(const fs::path& from, const fs::path& to) {
    const Descriptor source(open(from.c_str(), O_RDONLY | O_CLOEXEC));
    if (!source) return false;
    return WriteBeside(to, ModeOf(from), [&](int descriptor) {
        std::array<char, 65536> block{};
        for (;;) {
            const ssize_t count = read(source.Get(), block.data(), block.size());
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return count == 0;
            if (!WriteAll(descriptor, {block.data(), static_cast<std::size_t>(count)})) return false;
        }
    });
}

int PosixFiles::CreateFolders(const fs::path& folder) {
    fs::path built;
    for (const fs::path& part : folder) {
        built /= part;
        if (part.empty() || mkdir(built.c_str(), privateFolder) == 0 || errno == EEXIST) continue;
        // A parent that may not be written but is there already gives EACCES or EROFS.
        const int error = errno;
        std::error_code ignored;
        if (!fs::is_directory(built, ignored)) return error;
    }
    std::error_code ignored;
    return fs::is_directory(folder, ignored) ? 0 : ENOTDIR;
}

} // namespace korvalin
