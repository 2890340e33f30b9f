#pragma once

#include "dialogs/frmPopupMsg.h"

#include <QtTest>
#include <gtest/gtest.h>

#include <functional>
#include <type_traits>

namespace korvalin {

/// Does something to the next message box, or another modal window, as soon as it is there.
template <typename Box = frmPopupMsg>
class WhenPopupShows {
  public:
    explicit WhenPopupShows(std::type_identity_t<std::function<void(Box&)>> action) {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this, action = std::move(action)] {
            QPointer<Box> box = qobject_cast<Box*>(QApplication::activeModalWidget());
            if (!box) return;
            timer_.stop();
            EXPECT_TRUE(QTest::qWaitForWindowActive(box));
            action(*box);
            if (box) box->hide(); // one that the action left open must not hang the test
        });
        timer_.start(0);
    }

  private:
    QTimer timer_;
};

inline QPushButton* PopupButton(const QWidget& box, int index) {
    return box.findChild<QPushButton*>(QStringLiteral("cmdMsg%1").arg(index));
}

/// The captions of the buttons that are shown, with a bar between two.
inline std::string PopupCaptions(const QWidget& box) {
    QStringList captions;
    for (int i = 0; i < 3; ++i)
        if (PopupButton(box, i)->isVisible()) captions << PopupButton(box, i)->text();
    return captions.join(QLatin1Char('|')).toStdString();
}

} // namespace korvalin
