#pragma once

#include <string_view>

namespace korvalin {

inline constexpr std::string_view ProgramTitle = "Korvalin";

} // namespace korvalin
