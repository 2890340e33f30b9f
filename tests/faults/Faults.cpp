// Preloaded into a program: counts the calls that change files below a folder, lets the one that a plan names
// fail or ends the program at it, and logs what the others change.
//
//   KORVALIN_FAULTS_BELOW   the folder, without links
//   KORVALIN_FAULT          "n kind": the nth call fails with ENOSPC or EIO, "short" (half a write), ends the
//   process
//                           ("kill", or "torn" behind half a write), or finds the disk "full" as all later
//                           ones do
//   KORVALIN_FAULTS_LOG     a file: a line "call inode offset bytes<tab>path<tab>path" for each, then its
//   data; the call
//                           is "none" when the system has refused it
#include <climits>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

enum class Call { Write, Grow, Other }; // what can be cut short; what takes room on the disk; the rest

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool IsWatched(std::string_view path) {
    static const std::string below = Variable("KORVALIN_FAULTS_BELOW") + "/";
    return below.size() > 1 && path.starts_with(below);
}

// Empty for what is no file of the folder.
std::string PathOf(int file) {
    char path[PATH_MAX];
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = readlink(link.c_str(), path, sizeof path);
    const std::string_view found(path, length > 0 ? static_cast<std::size_t>(length) : 0);
    return IsWatched(found) ? std::string(found) : std::string();
}

[[noreturn]] void End() {
    kill(getpid(), SIGKILL);
    for (;;)
        pause();
}

enum class Fate { Succeeds, Fails, HalfDone, Torn };

Fate Next(Call call) {
    static const std::string plan = Variable("KORVALIN_FAULT");
    static const std::string kind = plan.substr(plan.find(' ') + 1);
    static const long planned = std::atol(plan.c_str());
    static std::atomic<long> calls = 0;
    const long number = ++calls;
    const bool strikes = kind == "full" ? number >= planned && call != Call::Other : number == planned;
    if (planned == 0 || !strikes) return Fate::Succeeds;
    if (kind == "kill") End();
    if (kind == "short") return Fate::HalfDone;
    if (kind == "torn") return Fate::Torn;
    errno = kind == "EIO" ? EIO : ENOSPC;
    return Fate::Fails;
}

void Log(const char* call, const struct stat& status, off_t offset, std::string_view data,
         const std::string& path, const std::string& other = "") {
    static const std::string name = Variable("KORVALIN_FAULTS_LOG");
    if (name.empty()) return;
    const int error = errno;
    static const long log =
        syscall(SYS_openat, AT_FDCWD, name.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    std::string text = std::string(call) + " " + std::to_string(status.st_ino) + " " +
                       std::to_string(offset) + " " + std::to_string(data.size()) + "\t" + path + "\t" +
                       other + "\n";
    text.append(data);
    syscall(SYS_write, log, text.data(), text.size());
    errno = error;
}

struct stat StatusOf(int file) {
    struct stat status {};
    fstat(file, &status);
    return status;
}
struct stat StatusOf(const char* path) {
    struct stat status {};
    lstat(path, &status);
    return status;
}

// Writes at the file's own position where `offset` is negative.
ssize_t Put(int file, std::string_view data, off_t offset) {
    const auto put = [&](std::string_view part) {
        return offset < 0 ? syscall(SYS_write, file, part.data(), part.size())
                          : syscall(SYS_pwrite64, file, part.data(), part.size(), offset);
    };
    const std::string path = PathOf(file);
    if (path.empty()) return put(data);
    const Fate fate = Next(Call::Write);
    if (fate == Fate::Fails) return -1;
    if (fate != Fate::Succeeds) data = data.substr(0, data.size() / 2);
    const struct stat before = StatusOf(file);
    const bool appends = (fcntl(file, F_GETFL) & O_APPEND) != 0;
    const off_t at = offset >= 0 ? offset : appends ? before.st_size : lseek(file, 0, SEEK_CUR);
    const ssize_t count = put(data);
    if (fate == Fate::Torn) End();
    Log(count < 0 ? "none" : "write", before, at,
        data.substr(0, count < 0 ? 0 : static_cast<std::size_t>(count)), path);
    return count;
}

template <typename F>
int OnFile(int file, const char* name, Call call, off_t offset, F&& change) {
    const std::string path = PathOf(file);
    if (path.empty()) return static_cast<int>(change());
    if (Next(call) == Fate::Fails) return -1;
    const int result = static_cast<int>(change());
    Log(result == 0 ? name : "none", StatusOf(file), offset, "", path);
    return result;
}

template <typename F>
int OnName(const char* path, const char* other, const char* name, Call call, F&& change) {
    if (!IsWatched(path)) return static_cast<int>(change());
    if (Next(call) == Fate::Fails) return -1;
    const struct stat status = StatusOf(path);
    const int result = static_cast<int>(change());
    Log(result == 0 ? name : "none", status, 0, "", path, other);
    return result;
}

int Open(int folder, const char* path, int flags, mode_t mode) {
    const auto open = [&] { return static_cast<int>(syscall(SYS_openat, folder, path, flags, mode)); };
    if (!IsWatched(path) || (flags & (O_CREAT | O_WRONLY | O_RDWR)) == 0) return open();
    const bool isNew = StatusOf(path).st_ino == 0;
    if (Next(isNew ? Call::Grow : Call::Other) == Fate::Fails) return -1;
    const int file = open();
    // A file that is opened to be emptied: nothing of the program does that.
    Log(file < 0                 ? "none"
        : isNew                  ? "create"
        : (flags & O_TRUNC) != 0 ? "emptied"
                                 : "open",
        StatusOf(path), 0, "", path);
    return file;
}

int Temporary(char* path, int flags) {
    using Make = int (*)(char*, int);
    static const auto make = reinterpret_cast<Make>(dlsym(RTLD_NEXT, "mkostemp"));
    if (!IsWatched(path)) return make(path, flags);
    if (Next(Call::Grow) == Fate::Fails) return -1;
    const int file = make(path, flags);
    Log(file < 0 ? "none" : "create", StatusOf(path), 0, "", path);
    return file;
}

} // namespace

extern "C" {

/// Puts a line of its own into the log.
void FaultMark(const char* text) {
    Log("mark", {}, 0, text, "");
}

ssize_t write(int file, const void* data, size_t size) {
    return Put(file, {static_cast<const char*>(data), size}, -1);
}
ssize_t pwrite(int file, const void* data, size_t size, off_t offset) {
    return Put(file, {static_cast<const char*>(data), size}, offset);
}
ssize_t pwrite64(int, const void*, size_t, off64_t) __attribute__((alias("pwrite")));
ssize_t writev(int file, const iovec* parts, int count) {
    std::string data;
    for (int i = 0; i < count; ++i)
        data.append(static_cast<const char*>(parts[i].iov_base), parts[i].iov_len);
    return Put(file, data, -1);
}

int fsync(int file) {
    return OnFile(file, "flush", Call::Other, 0, [&] { return syscall(SYS_fsync, file); });
}
int fdatasync(int file) {
    return OnFile(file, "flush", Call::Other, 0, [&] { return syscall(SYS_fdatasync, file); });
}
int ftruncate(int file, off_t size) noexcept {
    return OnFile(file, "cut", Call::Other, size, [&] { return syscall(SYS_ftruncate, file, size); });
}
int ftruncate64(int, off64_t) noexcept __attribute__((alias("ftruncate")));
int fallocate(int file, int mode, off_t offset, off_t size) {
    return OnFile(file, "room", Call::Grow, 0,
                  [&] { return syscall(SYS_fallocate, file, mode, offset, size); });
}
int fallocate64(int, int, off64_t, off64_t) __attribute__((alias("fallocate")));

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return Open(AT_FDCWD, path, flags, mode);
}
int open64(const char*, int, ...) __attribute__((alias("open")));
int openat(int folder, const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return Open(folder, path, flags, mode);
}
int mkostemp(char* path, int flags) {
    return Temporary(path, flags);
}
int mkostemp64(char*, int) __attribute__((alias("mkostemp")));

int rename(const char* from, const char* to) noexcept {
    return OnName(from, to, "rename", Call::Other,
                  [&] { return syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0); });
}
int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    return OnName(from, to, "rename", Call::Other,
                  [&] { return syscall(SYS_renameat2, fromFolder, from, toFolder, to, 0); });
}
int link(const char* from, const char* to) noexcept {
    return OnName(from, to, "link", Call::Grow,
                  [&] { return syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0); });
}
int unlink(const char* path) noexcept {
    return OnName(path, "", "unlink", Call::Other, [&] { return syscall(SYS_unlinkat, AT_FDCWD, path, 0); });
}
int remove(const char* path) noexcept {
    const int result = unlink(path);
    return result != 0 && errno == EISDIR ? rmdir(path) : result;
}
int mkdir(const char* path, mode_t mode) noexcept {
    return OnName(path, "", "folder", Call::Grow, [&] { return syscall(SYS_mkdirat, AT_FDCWD, path, mode); });
}
}
