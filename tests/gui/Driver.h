#pragma once

#include "forms/ColorField.h"

#include <QtTest>
#include <QtWidgets>
#include <gtest/gtest.h>

namespace korvalin {

/// What a user does in a window, whose controls are found by their object names.
class Driver {
  protected:
    virtual QWidget* Driven() const = 0;
    ~Driver() = default;

    template <typename Control = QWidget>
    Control* Find(const std::string& name) const {
        auto* control = Driven()->findChild<Control*>(QString::fromStdString(name));
        EXPECT_NE(control, nullptr) << name;
        return control;
    }
    /// A control that the user can reach.
    template <typename Control = QWidget>
    Control* Reach(const std::string& name) const {
        auto* control = Find<Control>(name);
        EXPECT_TRUE(control->isVisible() && control->isEnabled()) << name;
        return control;
    }
    void Click(const std::string& name) const {
        auto* button = Reach<QAbstractButton>(name);
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
    }
    /// Replaces the text and leaves the field.
    void Type(const std::string& name, const std::string& text, Qt::Key leave = Qt::Key_Tab) const {
        auto* field = Reach(name);
        auto* combo = qobject_cast<QComboBox*>(field);
        QLineEdit* edit = combo != nullptr ? combo->lineEdit() : qobject_cast<QLineEdit*>(field);
        field->setFocus();
        edit->selectAll();
        if (text.empty()) QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, QString::fromStdString(text));
        QTest::keyClick(field, leave);
    }
    /// Opens a list and chooses from it.
    void Pick(const std::string& name, const std::string& entry) const {
        auto* combo = Reach<QComboBox>(name);
        const int index = combo->findText(QString::fromStdString(entry));
        ASSERT_GE(index, 0) << entry;
        combo->setFocus();
        combo->showPopup();
        combo->view()->setCurrentIndex(combo->model()->index(index, 0));
        QTest::keyClick(combo->view(), Qt::Key_Return);
    }
    /// The text of a control, whether it is checked, or its colour.
    std::string Shown(const std::string& name) const {
        auto* control = Find(name);
        if (auto* combo = qobject_cast<QComboBox*>(control)) return combo->currentText().toStdString();
        if (auto* field = qobject_cast<ColorField*>(control)) return std::to_string(field->Color());
        if (auto* button = qobject_cast<QAbstractButton*>(control);
            button != nullptr && button->isCheckable())
            return button->isChecked() ? "True" : "False";
        return control->property("text").toString().toStdString();
    }
};

} // namespace korvalin
