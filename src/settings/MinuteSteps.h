#pragma once

#include <array>

namespace korvalin {

/// The spans in minutes that the settings offer in their lists.
inline constexpr std::array<int, 8> MinuteSteps = {1, 2, 5, 10, 15, 20, 30, 60};

} // namespace korvalin
