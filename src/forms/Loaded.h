// The program's windows. A window is one of them by its name, "frm...": the toolkit has top levels of its own
// (menus, tooltips, lists of drop-downs).
#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>

#include <string_view>

namespace korvalin {

/// The windows that exist, shown or not.
QList<QPointer<QWidget>> LoadedForms();

/// Whether a window of that name (letter case ignored) exists, shown or not.
bool IsFormLoaded(std::string_view name);

/// Closes every other window; one that refuses is hidden.
void UnloadOtherForms(const QWidget& form);

} // namespace korvalin
