#pragma once

#include <string_view>

class QWidget;

namespace korvalin {

/// Whether a window of that name (letter case ignored) is loaded, shown or not.
bool IsFormLoaded(std::string_view name);

/// Closes every other window, and those that open meanwhile, until none is left.
void UnloadOtherForms(const QWidget& form);

} // namespace korvalin
