#include "platform/linux/RegistryFile.h"

#include "platform/linux/PosixFiles.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace korvalin {
namespace {

constexpr mode_t privateFile = 0600;
constexpr mode_t permissionsOfOthers = 0077;

// What SQLite keeps beside a database, in the order in which it is moved: a log that stayed behind alone
// would be taken for the next database's.
constexpr std::array<const char*, 3> partSuffixes = {"-wal", "-shm", ""};

void MakePrivate(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && (status.st_mode & permissionsOfOthers) != 0) {
        static_cast<void>(!chmod(path.c_str(), privateFile));
    }
}

} // namespace

RegistryFile::RegistryFile(std::filesystem::path path) : path_(std::move(path)) {}

int RegistryFile::Prepare() const {
    if (const int error = PosixFiles().CreateFolders(path_.parent_path()); error != 0) return error;
    // Only a new file is opened here: closing any descriptor of a database frees the locks this process has
    // on it. SQLite gives its other files the permissions of this one.
    const Descriptor created(open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, privateFile));
    if (!created && errno != EEXIST) return errno;
    for (const char* suffix : partSuffixes)
        MakePrivate(path_.string() + suffix);
    return 0;
}

std::optional<RegistryFile::Identity> RegistryFile::CurrentIdentity() const {
    struct stat status {};
    if (stat(path_.c_str(), &status) != 0) return std::nullopt;
    return Identity{status.st_dev, status.st_ino};
}

Descriptor RegistryFile::LockFolder() const {
    Descriptor folder(open(path_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    while (folder && flock(folder.Get(), LOCK_EX) != 0) {
        if (errno != EINTR) return {};
    }
    return folder;
}

std::optional<std::filesystem::path> RegistryFile::MoveAside(Date now) const {
    const std::string first = path_.string() + ".damaged" + FormatDateSuffix(now);
    std::string target = first;
    struct stat status {};
    for (int number = 2; lstat(target.c_str(), &status) == 0; ++number)
        target = first + "-" + std::to_string(number);
    for (const char* suffix : partSuffixes) {
        const int result = rename((path_.string() + suffix).c_str(), (target + suffix).c_str());
        if (result != 0 && errno != ENOENT) return std::nullopt;
    }
    return target;
}

} // namespace korvalin
