#pragma once

#include "platform/Screen.h"
#include "settings/Keys.h"

#include <string>

namespace korvalin {

class Settings;

/// A window's place with its frame, in twips.
struct TwipsRect {
    int Left = 0, Top = 0, Width = 0, Height = 0;
    bool operator==(const TwipsRect&) const = default;
};

/// The smallest window, frame included.
inline constexpr int SmallestHeightTwips = 700;
inline constexpr int SmallestWidthTwips = 1000;

/// The main window's place as the settings keep it: left and top per screen resolution, width and height
/// shared. What is stored always describes the window with its caption.
class WindowGeometry {
  public:
    WindowGeometry(Settings& settings, Screen& screen);

    /// The stored place for a window whose caption is switched off and would be `captionHeight` high (0: it
    /// is shown).
    TwipsRect Restore(int captionHeight);

    /// Stores the window's place. In title-only mode the height is the caption's and not worth keeping.
    void Save(const TwipsRect& window, int captionHeight, bool titleOnly);

  private:
    SettingKey<int, std::string> LeftKey() const;
    SettingKey<int, std::string> TopKey() const;

    Settings& settings_;
    Screen& screen_;
};

} // namespace korvalin
