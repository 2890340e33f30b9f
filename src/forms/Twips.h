// The one place where twips convert. Pixels are logical ones, 96 an inch, whatever the screen's own
// resolution.
#pragma once

#include "platform/Screen.h"

#include <cmath>

namespace korvalin {

/// The nearest whole number of pixels.
inline int TwipsToPixels(double twips) {
    return static_cast<int>(std::lround(twips / TwipsPerPixel));
}

constexpr int PixelsToTwips(int pixels) {
    return pixels * TwipsPerPixel;
}

} // namespace korvalin
