#pragma once

#include <QComboBox>

namespace korvalin {

/// Says by which name, and in which words, a screen reader tells of a control that no label names.
inline void SpeakAs(QWidget& control, QString name, QString description = {}) {
    name.remove(QLatin1Char('&'));
    if (name.endsWith(QLatin1Char(':'))) name.chop(1);
    // A list's name is what is chosen in it, as the toolkit tells it: the description says what for.
    if (description.isEmpty() && qobject_cast<QComboBox*>(&control) != nullptr) description = name;
    if (control.accessibleName() != name) control.setAccessibleName(name);
    if (control.accessibleDescription() != description) control.setAccessibleDescription(description);
}

} // namespace korvalin
