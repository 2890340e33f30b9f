#include "platform/linux/store/RegistryFile.h"

#include "platform/linux/files/PosixFiles.h"
#include "platform/linux/store/DatabaseFiles.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace korvalin {
namespace {

constexpr mode_t privateFile = 0600;
constexpr mode_t permissionsOfOthers = 0077;

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
    if (const int error = CreateDatabaseFile(path_); error != 0) return error;
    for (const char* part : DatabaseParts)
        MakePrivate(path_.string() + part);
    return 0;
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
    return RenameDatabase(path_, target) ? std::optional<std::filesystem::path>(target) : std::nullopt;
}

} // namespace korvalin
