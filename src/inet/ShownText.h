#pragma once

#include <string>
#include <string_view>

namespace korvalin {

/// A text from elsewhere as it may be shown and logged: one line of at most 100 characters, without controls
/// and without the marks that turn or hide what stands around them.
std::string ShownText(std::string_view text);

} // namespace korvalin
