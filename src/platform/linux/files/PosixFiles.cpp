#include "platform/linux/files/PosixFiles.h"

#include "platform/linux/files/HeldFile.h"
#include "platform/linux/files/PlainFile.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace korvalin {
namespace {

constexpr mode_t privateFile = 0600;
constexpr mode_t privateFolder = 0700;
constexpr mode_t permissionBits = 07777;
constexpr int rewriteMilliseconds = 2000; // of a large file
constexpr int briefMilliseconds = 100;

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
        if (written == 0) errno = ENOSPC;
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

mode_t ModeOf(const std::filesystem::path& path) {
    struct stat status {};
    const bool isFile = lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    return isFile ? status.st_mode & permissionBits : privateFile;
}

// What is tidied up after a failure does not hide its cause.
void RemoveKeepingErrno(const std::filesystem::path& path) {
    const int cause = errno;
    unlink(path.c_str());
    errno = cause;
}

// Fills the new file and puts it in the place of `path`; removes it when anything fails.
bool PutInPlace(const Descriptor& file, const std::string& beside, const std::filesystem::path& path,
                mode_t mode, const std::function<bool(int file)>& fill) {
    const bool complete = fill(file.Get()) && fchmod(file.Get(), mode) == 0 && fsync(file.Get()) == 0 &&
                          rename(beside.c_str(), path.c_str()) == 0;
    if (!complete) {
        RemoveKeepingErrno(beside);
        return false;
    }
    FlushFolder(path.parent_path());
    return true;
}

// Writes a new file beside `path` and renames it over. Its name is its own, so two programs that replace the
// same file never write into each other's, and nothing that lies there already, a link least of all, is
// written through.
bool WriteBeside(const std::filesystem::path& path, mode_t mode, const std::function<bool(int file)>& fill) {
    std::string beside = path.string() + ".new-XXXXXX";
    const Descriptor file(mkostemp(beside.data(), O_CLOEXEC));
    return file && PutInPlace(file, beside, path, mode, fill);
}

// What cannot be told counts as one.
bool HasAccessList(const std::filesystem::path& path) {
    return getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0) >= 0 ||
           (errno != ENODATA && errno != ENOTSUP);
}

// A group of the user's number is the user's own on systems that give everybody one. Where a list names
// others, the group's bits are what all of them may do at most.
bool OnlyWeCanWrite(const std::filesystem::path& path, const struct stat& status) {
    const bool groupIsOurs = status.st_gid == getegid() && status.st_gid == geteuid();
    return (status.st_uid == geteuid() || status.st_uid == 0) && (status.st_mode & S_IWOTH) == 0 &&
           ((status.st_mode & S_IWGRP) == 0 || (groupIsOurs && !HasAccessList(path)));
}

// Written under the name of a temporary file of its own, as WriteBeside does.
class PosixNewFile : public NewFile {
  public:
    explicit PosixNewFile(const std::filesystem::path& path)
        : path_(path), beside_(path.string() + ".new-XXXXXX"), file_(mkostemp(beside_.data(), O_CLOEXEC)) {}
    ~PosixNewFile() override {
        if (file_ && !inPlace_) RemoveKeepingErrno(beside_);
    }
    PosixNewFile(const PosixNewFile&) = delete;
    PosixNewFile& operator=(const PosixNewFile&) = delete;

    bool IsOpen() const { return static_cast<bool>(file_); }
    bool Write(std::string_view part) override { return WriteAll(file_.Get(), part); }
    bool PutInPlace() override {
        inPlace_ = korvalin::PutInPlace(file_, beside_, path_, ModeOf(path_), [](int) { return true; });
        return inPlace_;
    }

  private:
    std::filesystem::path path_;
    std::string beside_;
    Descriptor file_;
    bool inPlace_ = false;
};

// A second name for the same file; a copy where the file system has none.
bool KeepAs(const std::filesystem::path& path, const std::filesystem::path& kept) {
    if (link(path.c_str(), kept.c_str()) == 0) return true;
    if (errno == EEXIST) return false;
    const Descriptor source = OpenPlainFile(path, O_RDONLY);
    return source && WriteBeside(kept, ModeOf(path), [&](int file) { return CopyAll(source.Get(), file); });
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
    const Descriptor file = OpenPlainFile(path, O_WRONLY | O_APPEND | O_CREAT);
    if (!file) return false;
    const ssize_t written = WriteOnce(file.Get(), lines);
    if (written == static_cast<ssize_t>(lines.size())) return true;
    const int cause = written < 0 ? errno : ENOSPC;
    if (written > 0) CutOff(file.Get(), written);
    errno = cause;
    return false;
}

int PosixFiles::AppendLines(const std::filesystem::path& path, std::string_view header,
                            std::string_view lines, std::string_view lineEnd, Flush flush, Wait wait) {
    const HeldFile held =
        OpenHeld(path, true, wait == Wait::Briefly ? briefMilliseconds : rewriteMilliseconds);
    if (held.Error != 0) return held.Error;
    const int file = held.File.Get();
    struct stat status {};
    if (fstat(file, &status) != 0) return errno;
    char last = '\n';
    if (status.st_size > 0 && pread(file, &last, 1, status.st_size - 1) < 0) return errno;
    std::string text;
    if (status.st_size == 0) text = header;
    if (last != '\n') text = lineEnd;
    text += lines;
    const ssize_t written = WriteOnce(file, text);
    int error = written < 0 ? errno : ENOSPC;
    if (written == static_cast<ssize_t>(text.size()))
        error = flush == Flush::No || fdatasync(file) == 0 ? 0 : errno;
    if (error == 0) return 0;
    if (written > 0) CutOff(file, written);
    return error;
}

std::unique_ptr<FileLock> PosixFiles::Hold(const std::filesystem::path& path) {
    struct DescriptorLock : FileLock {
        explicit DescriptorLock(HeldFile&& file) : Held(std::move(file)) {}
        HeldFile Held;
    };
    HeldFile held = OpenHeld(path, false, 0);
    return held.Error == 0 ? std::make_unique<DescriptorLock>(std::move(held)) : nullptr;
}

// The new file's name is always the same: what a killed run has left is taken up by the next one. The caller
// sees to it that there is only one at a time.
bool PosixFiles::ReplaceKeeping(const std::filesystem::path& path, const std::filesystem::path& kept,
                                const std::function<bool(const Sink& sink)>& write) {
    const std::string beside = path.string() + ".new";
    unlink(beside.c_str());
    const Descriptor file(open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, privateFile));
    if (!file) return false;
    errno = 0;
    bool keeps = false;
    const bool replaced = PutInPlace(file, beside, path, ModeOf(path), [&](int descriptor) {
        const Sink sink = [descriptor](std::string_view part) { return WriteAll(descriptor, part); };
        keeps = write(sink) && fsync(descriptor) == 0 && KeepAs(path, kept);
        return keeps;
    });
    if (keeps && !replaced) RemoveKeepingErrno(kept);
    return replaced;
}

bool PosixFiles::Replace(const std::filesystem::path& path, std::string_view content) {
    return WriteBeside(path, ModeOf(path), [&](int file) { return WriteAll(file, content); });
}

std::unique_ptr<NewFile> PosixFiles::BeginReplace(const std::filesystem::path& path) {
    auto file = std::make_unique<PosixNewFile>(path);
    if (!file->IsOpen()) return nullptr;
    return file;
}

bool PosixFiles::Copy(const std::filesystem::path& from, const std::filesystem::path& to) {
    const Descriptor source = OpenPlainFile(from, O_RDONLY);
    struct stat status {};
    if (!source || fstat(source.Get(), &status) != 0) return false;
    return WriteBeside(to, status.st_mode & permissionBits,
                       [&](int file) { return CopyAll(source.Get(), file); });
}

bool PosixFiles::IsOursAlone(const std::filesystem::path& path) {
    struct stat file {};
    struct stat folder {};
    const std::filesystem::path around = path.parent_path();
    return lstat(path.c_str(), &file) == 0 && S_ISREG(file.st_mode) && file.st_nlink == 1 &&
           OnlyWeCanWrite(path, file) && stat(around.c_str(), &folder) == 0 && OnlyWeCanWrite(around, folder);
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
