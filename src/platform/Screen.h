#pragma once

#include <optional>

namespace korvalin {

inline constexpr int TwipsPerPixel = 15; // 1440 twips an inch at 96 logical pixels an inch

/// The primary screen in logical pixels.
struct ScreenSize {
    int WidthPixels = 0;
    int HeightPixels = 0;

    int WidthTwips() const { return WidthPixels * TwipsPerPixel; }
    int HeightTwips() const { return HeightPixels * TwipsPerPixel; }
};

class Screen {
  public:
    virtual ~Screen() = default;

    /// Size of the primary screen's desktop; nullopt where there is none (command line, no monitor).
    [[nodiscard]] virtual std::optional<ScreenSize> Primary() = 0;

    /// Size of the current display mode, as EnumDisplaySettings tells it; nullopt where there is none.
    [[nodiscard]] virtual std::optional<ScreenSize> CurrentDisplayMode() = 0;
};

} // namespace korvalin
