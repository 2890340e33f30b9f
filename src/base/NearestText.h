#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

/// The text that is most like what was typed, letter case ignored; empty when there are none.
std::string NearestText(const std::vector<std::string>& texts, std::string_view typed);

} // namespace korvalin
