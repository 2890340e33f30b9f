#pragma once

#include <QCheckBox>

#include <initializer_list>

namespace korvalin {

/// Lets the user operate the controls, or not.
inline void SetEnabled(std::initializer_list<QWidget*> controls, bool enabled) {
    for (QWidget* control : controls)
        control->setEnabled(enabled);
}

/// The controls can be operated while the box is checked, from now on.
inline void EnableWith(QCheckBox& box, std::initializer_list<QWidget*> controls) {
    for (QWidget* control : controls)
        QObject::connect(&box, &QCheckBox::toggled, control, &QWidget::setEnabled);
    SetEnabled(controls, box.isChecked());
}

} // namespace korvalin
