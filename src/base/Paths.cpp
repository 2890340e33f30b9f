#include "base/Paths.h"

namespace korvalin {

bool FileExists(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

bool IsFileNotFolder(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::exists(path, error) && !std::filesystem::is_directory(path, error);
}

std::filesystem::path FreeBackupName(const std::filesystem::path& file, Date moment, char separator) {
    for (;; moment += OneSecond) {
        const std::filesystem::path name = file.string() + FormatDateSuffix(moment, separator);
        if (!FileExists(name)) return name;
    }
}

} // namespace korvalin
