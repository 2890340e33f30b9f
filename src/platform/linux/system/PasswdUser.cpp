#include "platform/linux/system/PasswdUser.h"

#include "platform/linux/system/PasswdEntry.h"

#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace korvalin {

PasswdEntry FindPasswdEntry() {
    // Entries from a directory server may be long: the buffer grows until the entry fits.
    for (std::size_t size = 4096; size <= std::size_t{1} << 20; size *= 4) {
        std::vector<char> buffer(size);
        passwd entry{};
        passwd* found = nullptr;
        const int error = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
        if (error == 0 && found != nullptr) return {found->pw_name, found->pw_dir};
        if (error != ERANGE) break;
    }
    return {};
}

std::string PasswdUser::Name() {
    if (!name_.empty()) return name_;
    name_ = FindPasswdEntry().Name;
    if (const char* user = std::getenv("USER"); name_.empty() && user != nullptr) name_ = user;
    return name_;
}

} // namespace korvalin
