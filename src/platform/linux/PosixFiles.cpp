#include "platform/linux/PosixFiles.h"

#include "platform/linux/Descriptor.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/stat.h>

namespace korvalin {
namespace {

constexpr mode_t privateFile = 0600;
constexpr mode_t privateFolder = 0700;
constexpr mode_t permissionBits = 07777;

ssize_t WriteOnce(int file, std::string_view content) {
    ssize_t written = 0;
    do {
        written = write(file, content.data(), content.size());
    } while (written < 0 && errno == EINTR);
    return written;
}

bool WriteAll(int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = WriteOnce(file, content);
        if (written <= 0) return false;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool CopyAll(int from, int to) {
    std::array<char, 65536> block;
    for (;;) {
        const ssize_t count = read(from, block.data(), block.size());
        if (count == 0) return true;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 || !WriteAll(to, {block.data(), static_cast<std::size_t>(count)})) return false;
    }
}

// A rename is on the medium only when its folder is. Some file systems cannot do it; the new content is in
// place anyway.
void FlushFolder(const std::filesystem::path& folder) {
    const Descriptor descriptor(
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor) fsync(descriptor.Get());
}

// Writes a new file beside `path` and renames it over. Its name is its own, so two programs that replace the
// same file never write into each other's, and nothing that lies there already, a link least of all, is
// written through.
bool WriteBeside(const std::filesystem::path& path, mode_t mode, const std::function<bool(int file)>& fill) {
    std::string beside = path.string() + ".new-XXXXXX";
    const Descriptor file(mkostemp(beside.data(), O_CLOEXEC));
    if (!file) return false;
    const bool complete = fill(file.Get()) && fchmod(file.Get(), mode) == 0 && fsync(file.Get()) == 0 &&
                          rename(beside.c_str(), path.c_str()) == 0;
    if (!complete) {
        unlink(beside.c_str());
        return false;
    }
    FlushFolder(path.parent_path());
    return true;
}

// Takes back what a write that ran out of space has left, unless another program has appended behind it
// since.
void CutOff(int file, ssize_t written) {
    const off_t end = lseek(file, 0, SEEK_CUR);
    struct stat status {};
    if (end < written || fstat(file, &status) != 0 || status.st_size != end) return;
    static_cast<void>(!ftruncate(file, end - written));
}

} // namespace

bool PosixFiles::Append(const std::filesystem::path& path, std::string_view lines) {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, privateFile));
    if (!file) return false;
    const ssize_t written = WriteOnce(file.Get(), lines);
    if (written == static_cast<ssize_t>(lines.size())) return true;
    if (written > 0) CutOff(file.Get(), written);
    return false;
}

bool PosixFiles::Replace(const std::filesystem::path& path, std::string_view content) {
    struct stat old {};
    const mode_t mode = stat(path.c_str(), &old) == 0 ? old.st_mode & permissionBits : privateFile;
    return WriteBeside(path, mode, [&](int file) { return WriteAll(file, content); });
}

bool PosixFiles::Copy(const std::filesystem::path& from, const std::filesystem::path& to) {
    const Descriptor source(open(from.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (!source || fstat(source.Get(), &status) != 0) return false;
    return WriteBeside(to, status.st_mode & permissionBits,
                       [&](int file) { return CopyAll(source.Get(), file); });
}

int PosixFiles::CreateFolders(const std::filesystem::path& folder) {
    // What exists is asked for first: mkdir on an existing folder of a read-only system need not say EEXIST.
    struct stat status {};
    if (stat(folder.c_str(), &status) == 0) return S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
    if (errno != ENOENT || folder.empty()) return errno;
    const std::filesystem::path parent =
        folder.has_filename() ? folder.parent_path() : folder.parent_path().parent_path();
    if (!parent.empty()) {
        if (const int error = CreateFolders(parent); error != 0) return error;
    }
    if (mkdir(folder.c_str(), privateFolder) == 0) return 0;
    const int error = errno;
    const bool madeByAnother =
        error == EEXIST && stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    return madeByAnother ? 0 : error;
}

} // namespace korvalin
