// Colour values as the settings hold them.
#pragma once

#include <QColor>

#include <cstdint>

namespace korvalin {

/// The value of a system colour by its index (COLOR_... of winuser.h).
constexpr std::int32_t SystemColor(std::uint32_t index) {
    return static_cast<std::int32_t>(0x80000000U | index);
}

inline constexpr std::int32_t ColorWindowBackground = SystemColor(5);
inline constexpr std::int32_t ColorWindowText = SystemColor(8);
inline constexpr std::int32_t ColorApplicationWorkspace = SystemColor(12);
inline constexpr std::int32_t ColorGrayText = SystemColor(17);

/// The colour of a value: red + 256 * green + 65536 * blue, or a system colour, which follows the desktop's
/// palette.
QColor ToColor(std::int32_t value);

/// The value of an opaque colour.
std::int32_t ToColorValue(const QColor& color);

} // namespace korvalin
