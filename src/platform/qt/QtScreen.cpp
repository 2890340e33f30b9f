#include "platform/qt/QtScreen.h"

#include <QGuiApplication>
#include <QScreen>

namespace korvalin {

std::optional<ScreenSize> QtScreen::Primary() {
    // A desktop whose last monitor was switched off has none, or one without a size.
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr || screen->geometry().isEmpty()) return std::nullopt;
    return ScreenSize{screen->geometry().width(), screen->geometry().height()};
}

} // namespace korvalin
