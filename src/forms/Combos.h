// Helpers for lists whose text the user may also type.
#pragma once

#include "base/Text.h"

#include <QComboBox>
#include <QLineEdit>
#include <QSignalBlocker>

#include <string>
#include <vector>

namespace korvalin {

/// Fills the list. What is typed stays as it is typed: a completion would turn "5" into "50".
inline void FillCombo(QComboBox& combo, const std::vector<int>& values, const auto& text) {
    combo.setCompleter(nullptr);
    for (const int value : values)
        combo.addItem(QString::fromStdString(text(value)));
}

/// Shows a text, in the list or not, without telling the handlers.
inline void ShowText(QComboBox& combo, const std::string& text) {
    const QSignalBlocker quiet(combo);
    const QString shown = QString::fromStdString(text);
    combo.setCurrentIndex(combo.findText(shown));
    combo.setEditText(shown);
}

/// What is chosen or typed, without blanks around it.
inline std::string TextOf(const QComboBox& combo) {
    return std::string(Trim(combo.currentText().toStdString()));
}

/// Calls `check` when the user has chosen from the list or leaves the field.
inline void WhenEntered(QComboBox& combo, QObject& owner, const auto& check) {
    QObject::connect(&combo, &QComboBox::activated, &owner, check);
    QObject::connect(combo.lineEdit(), &QLineEdit::editingFinished, &owner, check);
}

} // namespace korvalin
