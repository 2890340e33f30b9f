#include "errors/FileFailures.h"

#include <cerrno>

namespace korvalin {

int FailureText(const std::error_code& code) {
    // A stream's own code 1 is not the system's.
    if (code.category() != std::generic_category() && code.category() != std::system_category()) return 0;
    switch (code.value()) {
    case ENOSPC:
    case EDQUOT: return 209;
    case EROFS: return 210;
    case EACCES:
    case EPERM: return 211;
    case EAGAIN:
    case EBUSY:
    case ETXTBSY: return 212;
    case ENOENT:
    case ENOTDIR: return 213;
    case EIO: return 214;
    case EISDIR:
    case ELOOP:
    case ENXIO: return 233;
    case ENAMETOOLONG: return 234;
    default: return 0;
    }
}

// The standard library makes "name: cause" of the name that the exception was given.
std::string FailedFile(const std::system_error& error) {
    if (const auto* named = dynamic_cast<const std::filesystem::filesystem_error*>(&error))
        return (named->path2().empty() ? named->path1() : named->path2()).string();
    const std::string text = error.what();
    return text.substr(0, text.rfind(": " + error.code().message()));
}

} // namespace korvalin
