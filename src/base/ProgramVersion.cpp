#include "base/ProgramVersion.h"

#include <fmt/format.h>

namespace korvalin {

std::string ProgramVersion::Series() const {
    return fmt::format("V{}.{}", Major, Minor);
}

std::string ProgramVersion::Numbers() const {
    return fmt::format("{}.{}.{}", Major, Minor, Revision);
}

std::string ProgramVersion::Text() const {
    const std::string revision = std::to_string(Revision);
    return fmt::format("{}.{}", Series(), Revision < 100 ? revision : revision.substr(0, 2));
}

} // namespace korvalin
