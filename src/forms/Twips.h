#pragma once

#include "platform/Screen.h"

#include <cmath>

namespace korvalin {

/// The one place where twips convert; pixels are logical ones.
inline int TwipsToPixels(int twips) { return static_cast<int>(std::lround(static_cast<double>(twips) / TwipsPerPixel)); }
inline int PixelsToTwips(int pixels) { return pixels * TwipsPerPixel; }

} // namespace korvalin
