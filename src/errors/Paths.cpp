#include "errors/Paths.h"

namespace korvalin {

std::string AddBackslash(std::string_view path) {
    std::string result(path);
    if (result.ends_with('\\') || result.ends_with('/')) return result;
    const bool windowsPath = result.find('\\') != std::string::npos && result.find('/') == std::string::npos;
    result += windowsPath ? '\\' : static_cast<char>(std::filesystem::path::preferred_separator);
    return result;
}

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
