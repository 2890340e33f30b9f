#pragma once

#include <QComboBox>
#include <QEvent>

namespace korvalin {

/// Leaves the wheel to the boxes that have the focus: over any other one it is meant for the page.
class FocusedWheel : public QObject {
  public:
    /// Sees to all boxes that are in the window now.
    explicit FocusedWheel(QWidget& window) : QObject(&window) {
        const QList<QComboBox*> boxes = window.findChildren<QComboBox*>();
        for (QComboBox* box : boxes) {
            box->setFocusPolicy(Qt::StrongFocus);
            box->installEventFilter(this);
        }
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus())
            return QObject::eventFilter(watched, event);
        event->ignore();
        return true;
    }
};

} // namespace korvalin
