#pragma once

#include "base/Date.h"

#include <cstdint>
#include <string>
#include <variant>

namespace korvalin {

/// A setting in memory: Boolean, whole number, date (the double) or text; its name decides which.
using SettingValue = std::variant<bool, std::int32_t, Date, std::string>;

} // namespace korvalin
