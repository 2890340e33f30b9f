// Kinds of single characters, of ASCII alone.
#pragma once

namespace korvalin {

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool IsLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || IsDigit(c);
}

} // namespace korvalin
