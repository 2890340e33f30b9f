#include "platform/linux/PasswdUser.h"

#include <cstdlib>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace korvalin {

std::string PasswdUser::Name() {
    if (!name_.empty()) return name_;
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
        name_ = found->pw_name;
    } else if (const char* user = std::getenv("USER")) {
        name_ = user;
    }
    return name_;
}

} // namespace korvalin
