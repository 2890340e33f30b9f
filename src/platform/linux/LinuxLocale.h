#pragma once

#include "base/Locale.h"

#include <string>

namespace korvalin {

/// The user's regional formats as the C library knows them (LC_NUMERIC, LC_TIME); the defaults of Locale where it does
/// not.
Locale ReadSystemLocale();

/// Translates a pattern of strftime (%d.%m.%Y) into one of Locale's; "" when it holds what Locale has no letter for.
std::string TranslateTimePattern(const std::string& pattern);

} // namespace korvalin
