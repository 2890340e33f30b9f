#include "display/WindowGeometry.h"

#include "settings/Settings.h"

namespace korvalin {

WindowGeometry::WindowGeometry(Settings& settings, Screen& screen) : settings_(settings), screen_(screen) {}

std::string WindowGeometry::LeftName() const {
    return "MON_Left_" + std::to_string(screen_.CurrentDisplayMode().value_or(ScreenSize()).WidthPixels);
}

std::string WindowGeometry::TopName() const {
    return "MON_Top_" + std::to_string(screen_.CurrentDisplayMode().value_or(ScreenSize()).HeightPixels);
}

TwipsRect WindowGeometry::Restore(int captionHeight) {
    const TwipsRect stored = {settings_.GetNumber(LeftName()), settings_.GetNumber(TopName()),
                              settings_.GetNumber("MON_Width"), settings_.GetNumber("MON_Height")};
    return {stored.Left, stored.Top + captionHeight, stored.Width, stored.Height - captionHeight};
}

void WindowGeometry::Save(const TwipsRect& window, int captionHeight, bool titleOnly) {
    settings_.SetReg(TopName(), window.Top - captionHeight);
    settings_.SetReg(LeftName(), window.Left);
    settings_.SetReg("MON_Width", window.Width);
    if (!titleOnly) settings_.SetReg("MON_Height", window.Height + captionHeight);
}

} // namespace korvalin
