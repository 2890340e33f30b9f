#include "platform/qt/QtScreen.h"

#include <QGuiApplication>
#include <QScreen>

namespace korvalin {

std::optional<ScreenSize> QtScreen::Primary() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) return std::nullopt;
    return ScreenSize{screen->geometry().width(), screen->geometry().height()};
}

} // namespace korvalin
