#pragma once

#include <QCheckBox>

namespace korvalin {

/// Shows a value, which from now on is what the user makes of it; `changed` is called after each change.
inline void Bind(QCheckBox& box, bool& value, const auto& changed) {
    box.setChecked(value);
    QObject::connect(&box, &QCheckBox::toggled, &box, [&value, changed](bool on) {
        value = on;
        changed();
    });
}
inline void Bind(QCheckBox& box, bool& value) {
    Bind(box, value, [] {});
}

} // namespace korvalin
