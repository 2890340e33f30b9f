#pragma once

#include <QCheckBox>

#include <functional>

namespace korvalin {

/// Shows a value, which from now on is what the user makes of it; `changed` is called after each change.
inline void Bind(
    QCheckBox& box, bool& value, const std::function<void()>& changed = [] {}) {
    box.setChecked(value);
    QObject::connect(&box, &QCheckBox::toggled, &box, [&value, changed](bool on) {
        value = on;
        changed();
    });
}

} // namespace korvalin
