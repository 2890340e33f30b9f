#include "display/WindowGeometry.h"

#include "settings/Settings.h"

namespace korvalin {

WindowGeometry::WindowGeometry(Settings& settings, Screen& screen) : settings_(settings), screen_(screen) {}

SettingKey<int, std::string> WindowGeometry::LeftKey() const {
    return Keys::MON_Left(screen_.CurrentDisplayMode().value_or(ScreenSize()).WidthPixels);
}

SettingKey<int, std::string> WindowGeometry::TopKey() const {
    return Keys::MON_Top(screen_.CurrentDisplayMode().value_or(ScreenSize()).HeightPixels);
}

TwipsRect WindowGeometry::Restore(int captionHeight) {
    const TwipsRect stored = {settings_.Get(LeftKey()), settings_.Get(TopKey()),
                              settings_.Get(Keys::MON_Width), settings_.Get(Keys::MON_Height)};
    return {stored.Left, stored.Top + captionHeight, stored.Width, stored.Height - captionHeight};
}

void WindowGeometry::Save(const TwipsRect& window, int captionHeight, bool titleOnly) {
    settings_.Set(TopKey(), window.Top - captionHeight);
    settings_.Set(LeftKey(), window.Left);
    settings_.Set(Keys::MON_Width, window.Width);
    if (!titleOnly) settings_.Set(Keys::MON_Height, window.Height + captionHeight);
}

} // namespace korvalin
