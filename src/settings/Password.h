#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvalin {

/// Scrambles a password, byte by byte, into decimal digits; the two random digits (0 to 9) are strewn in so
/// that the same password does not always look the same. nullopt when a byte is too high for the scheme:
/// above 242 at odd positions, above 246 at even ones.
std::optional<std::string> ScramblePassword(std::string_view password, int firstRandomDigit,
                                            int secondRandomDigit);

/// The bytes of a scrambled password; "" for a text whose length no scrambled password has, nullopt for one
/// that holds anything else than digits or a number that no pair of bytes gives.
std::optional<std::string> UnscramblePassword(std::string_view scrambled);

} // namespace korvalin
