#pragma once

#include <QColor>

#include <cstdint>

namespace korvalin {

/// A colour of the system's current look (COLOR_... of winuser.h), as a colour value.
constexpr std::int32_t SystemColor(std::uint32_t index) { return static_cast<std::int32_t>(0x80000000U | index); }

inline constexpr std::int32_t ColorApplicationWorkspace = SystemColor(0x0C);
inline constexpr std::int32_t ColorGrayText = SystemColor(0x11);

/// Colour of a value: red + 256 green + 65536 blue, or a system colour, which comes from the application's palette.
QColor ToColor(std::int32_t value);

/// The value of a colour: red + 256 green + 65536 blue.
std::int32_t ToColorValue(const QColor& color);

} // namespace korvalin
