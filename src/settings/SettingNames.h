// Which names are settings, for those that a person types.
#pragma once

#include <string>
#include <string_view>

namespace korvalin {

/// Whether a name is a setting's: one with a row, or a line's, an entry's, a curve's or a screen's. Letter
/// case is ignored.
bool IsSettingName(std::string_view name);

/// The setting whose name is most like this one; of a line's setting the line stays as it was typed.
std::string NearestSettingName(std::string_view name);

} // namespace korvalin
