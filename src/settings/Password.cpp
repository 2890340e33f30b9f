#include "settings/Password.h"

#include <fmt/format.h>

#include <charconv>
#include <cstdint>

namespace korvalin {
namespace {

constexpr unsigned lowOffset = 13; // of the first byte of a pair
constexpr unsigned highOffset = 9; // of the second one
constexpr unsigned byteValues = 256;
constexpr std::size_t groupDigits = 5; // a pair as a decimal number, up to 65535

// Where the random digits stand in the finished text.
constexpr std::size_t firstRandomAt = 2;
constexpr std::size_t secondRandomAt = 5;

unsigned Code(char c) {
    return static_cast<std::uint8_t>(c);
}

char Digit(int value) {
    return static_cast<char>('0' + value);
}

std::optional<unsigned> GroupValue(std::string_view digits) {
    unsigned value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

bool AppendByte(std::string& bytes, unsigned scrambled, unsigned offset) {
    if (scrambled < offset || scrambled >= byteValues) return false;
    bytes += static_cast<char>(static_cast<std::uint8_t>(scrambled - offset));
    return true;
}

} // namespace

std::optional<std::string> ScramblePassword(std::string_view password, int firstRandomDigit,
                                            int secondRandomDigit) {
    if (password.empty()) return std::string();
    std::string text;
    for (std::size_t i = 0; i < password.size(); i += 2) {
        const unsigned low = Code(password[i]) + lowOffset;
        const unsigned high = i + 1 < password.size() ? Code(password[i + 1]) + highOffset : 0;
        if (low >= byteValues || high >= byteValues) return std::nullopt;
        text += fmt::format("{:05}", high * byteValues + low);
    }
    text.insert(firstRandomAt, 1, Digit(firstRandomDigit));
    text.insert(secondRandomAt, 1, Digit(secondRandomDigit));
    return text;
}

std::optional<std::string> UnscramblePassword(std::string_view scrambled) {
    if (scrambled.size() <= secondRandomAt) return std::string();
    std::string digits(scrambled);
    digits.erase(secondRandomAt, 1);
    digits.erase(firstRandomAt, 1);
    if (digits.size() % groupDigits != 0) return std::string();

    std::string bytes;
    for (std::size_t i = 0; i < digits.size(); i += groupDigits) {
        const std::optional<unsigned> value = GroupValue(std::string_view(digits).substr(i, groupDigits));
        if (!value || !AppendByte(bytes, *value % byteValues, lowOffset)) return std::nullopt;
        const unsigned high = *value / byteValues;
        if (high != 0 && !AppendByte(bytes, high, highOffset)) return std::nullopt;
    }
    return bytes;
}

} // namespace korvalin
