#include "platform/linux/store/DatabaseFiles.h"

#include "platform/linux/files/Descriptor.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace korvalin {

std::optional<FileIdentity> IdentityOf(const std::filesystem::path& file) {
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

int CreateDatabaseFile(const std::filesystem::path& file) {
    constexpr mode_t privateFile = 0600;
    // Only a new file is opened here: closing any descriptor of a database frees the locks this process has
    // on it. SQLite gives its other files the permissions of this one.
    const Descriptor created(open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, privateFile));
    return !created && errno != EEXIST ? errno : 0;
}

void MakePrivate(const std::filesystem::path& file) {
    constexpr mode_t privateFile = 0600;
    constexpr mode_t permissionsOfOthers = 0077;
    struct stat status {};
    if (lstat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
        (status.st_mode & permissionsOfOthers) != 0)
        static_cast<void>(fchmodat(AT_FDCWD, file.c_str(), privateFile, AT_SYMLINK_NOFOLLOW));
}

bool RenameDatabase(const std::filesystem::path& from, const std::filesystem::path& to) {
    for (const char* part : DatabaseParts) {
        const int result = std::rename((from.string() + part).c_str(), (to.string() + part).c_str());
        if (result != 0 && errno != ENOENT) return false;
    }
    return true;
}

void RemoveDatabase(const std::filesystem::path& file) {
    for (const char* part : DatabaseParts)
        unlink((file.string() + part).c_str());
}

} // namespace korvalin
