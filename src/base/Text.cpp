#include "base/Text.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdint>
#include <cstring>
#include <cwctype>

namespace korvalin {
namespace {

// Windows-1252 codes 0x80 to 0x9F (the rest equals Latin-1); from the published code page table.
constexpr std::array<char16_t, 32> windows1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::uint8_t Byte(char c) {
    return static_cast<std::uint8_t>(c);
}

bool IsContinuation(char c) {
    return (Byte(c) & 0xC0) == 0x80;
}

// Length of the sequence that starts with this byte; 0 when no sequence can start with it.
std::size_t SequenceLength(std::uint8_t lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    return 0;
}

// The second byte alone decides about overlong forms, surrogates and the upper end.
bool SecondByteFits(std::uint8_t lead, std::uint8_t second) {
    switch (lead) {
    case 0xE0: return second >= 0xA0;
    case 0xED: return second <= 0x9F;
    case 0xF0: return second >= 0x90;
    case 0xF4: return second <= 0x8F;
    default: return true;
    }
}

// Where the first byte beyond ASCII may stand, from `from` on. Nearly all text is ASCII: eight bytes at a
// time.
std::size_t SkipAscii(std::string_view bytes, std::size_t from) {
    constexpr std::uint64_t highBits = 0x8080808080808080;
    std::uint64_t eight = 0;
    while (from + sizeof eight <= bytes.size()) {
        std::memcpy(&eight, bytes.data() + from, sizeof eight);
        if ((eight & highBits) != 0) break;
        from += sizeof eight;
    }
    return from;
}

void AppendUtf8(std::string& text, char32_t code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
        return;
    }
    if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
    } else {
        if (code < 0x10000) {
            text += static_cast<char>(0xE0 | (code >> 12));
        } else {
            text += static_cast<char>(0xF0 | (code >> 18));
            text += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        }
        text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    }
    text += static_cast<char>(0x80 | (code & 0x3F));
}

// Of one well-formed sequence.
char32_t CodeOf(std::string_view sequence) {
    constexpr unsigned leadBits[] = {0x7FU, 0x1FU, 0x0FU, 0x07U};
    char32_t code = Byte(sequence.front()) & leadBits[sequence.size() - 1];
    for (const char c : sequence.substr(1))
        code = code << 6U | (Byte(c) & 0x3FU);
    return code;
}

char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
}

// The way over the upper case makes one of letters that have two lower ones, as the Greek sigma. What becomes
// of the Turkish i depends on the language: it stays.
char32_t FoldCase(char32_t code) {
    constexpr char32_t capitalDottedI = 0x130;
    constexpr char32_t smallDotlessI = 0x131;
    static const locale_t allAlphabets = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (allAlphabets == nullptr || code == capitalDottedI || code == smallDotlessI) return code;
    return static_cast<char32_t>(
        towlower_l(towupper_l(static_cast<wint_t>(code), allAlphabets), allAlphabets));
}

} // namespace

bool IsValidUtf8(std::string_view bytes) {
    for (std::size_t i = SkipAscii(bytes, 0); i < bytes.size(); i = SkipAscii(bytes, i)) {
        const std::uint8_t lead = Byte(bytes[i]);
        const std::size_t length = SequenceLength(lead);
        if (length == 0 || i + length > bytes.size()) return false;
        for (std::size_t k = 1; k < length; ++k) {
            if (!IsContinuation(bytes[i + k])) return false;
        }
        if (length > 1 && !SecondByteFits(lead, Byte(bytes[i + 1]))) return false;
        i += length;
    }
    return true;
}

std::string FromWindows1252(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 8);
    for (const char c : bytes) {
        const std::uint8_t code = Byte(c);
        AppendUtf8(text, code >= 0x80 && code < 0xA0 ? windows1252High[code - 0x80U] : char16_t{code});
    }
    return text;
}

std::string DecodeLine(std::string_view bytes) {
    return IsValidUtf8(bytes) ? std::string(bytes) : FromWindows1252(bytes);
}

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string ToLower(std::string_view text) {
    std::string lower;
    lower.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = SequenceLength(Byte(text[i]));
        const std::string_view character = text.substr(i, std::max<std::size_t>(length, 1));
        if (length <= 1 || !IsValidUtf8(character)) {
            lower += LowerAscii(text[i++]);
            continue;
        }
        AppendUtf8(lower, FoldCase(CodeOf(character)));
        i += length;
    }
    return lower;
}

bool EqualsNoCase(std::string_view left, std::string_view right) {
    // Most texts are ASCII, and most that differ do so early.
    std::size_t i = 0;
    for (const std::size_t end = std::min(left.size(), right.size()); i < end; ++i) {
        if (((Byte(left[i]) | Byte(right[i])) & 0x80) != 0) break;
        if (LowerAscii(left[i]) != LowerAscii(right[i])) return false;
    }
    return left.substr(i) == right.substr(i) || ToLower(left.substr(i)) == ToLower(right.substr(i));
}

bool ContainsNoCase(std::string_view text, std::string_view part) {
    return ToLower(text).find(ToLower(part)) != std::string::npos;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && EqualsNoCase(text.substr(0, prefix.size()), prefix);
}

bool EndsWithNoCase(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && EqualsNoCase(text.substr(text.size() - suffix.size()), suffix);
}

std::size_t CharacterCount(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return !IsContinuation(c); }));
}

std::string_view FirstCharacters(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    while (end < text.size() && count > 0) {
        ++end;
        while (end < text.size() && IsContinuation(text[end]))
            ++end;
        --count;
    }
    return text.substr(0, end);
}

std::vector<std::string_view> Split(std::string_view text, char separator, std::size_t limit) {
    std::vector<std::string_view> fields;
    while (fields.size() + 1 < limit) {
        const auto end = text.find(separator);
        if (end == std::string_view::npos) break;
        fields.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    fields.push_back(text);
    return fields;
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
    std::string result;
    for (;;) {
        const auto at = text.find(from);
        result += text.substr(0, at);
        if (at == std::string_view::npos) return result;
        result += to;
        text.remove_prefix(at + from.size());
    }
}

std::string OneLine(std::string_view text) {
    return ReplaceAll(ReplaceAll(ReplaceAll(text, "\r\n", " "), "\r", " "), "\n", " ");
}

std::string EscapeControls(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string shown;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = std::max<std::size_t>(SequenceLength(Byte(text[i])), 1);
        const std::string_view character = text.substr(i, length);
        const bool isC0 = length == 1 && (Byte(text[i]) < 0x20 || Byte(text[i]) == 0x7F) && text[i] != '\n';
        const bool isC1 = length == 2 && Byte(text[i]) == 0xC2 && Byte(character.back()) < 0xA0;
        if (!isC0 && !isC1 && IsValidUtf8(character)) {
            shown += character;
            i += character.size();
            continue;
        }
        const std::uint8_t code = Byte(isC1 ? character.back() : text[i]);
        shown.append("\\x").append({digits[code >> 4U], digits[code & 0xFU]});
        i += isC1 ? character.size() : 1;
    }
    return shown;
}

std::string WithoutFormula(std::string_view text) {
    const bool isFormula =
        !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
    return (isFormula ? "'" : "") + std::string(text);
}

std::string EscapeMarkup(std::string_view text) {
    const auto isPlain = [](char c) {
        return static_cast<unsigned char>(c) >= ' ' && c != '&' && c != '<' && c != '>' && c != '"';
    };
    if (std::all_of(text.begin(), text.end(), isPlain)) return std::string(text);
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '&': escaped += "&amp;"; break;
        case '<': escaped += "&lt;"; break;
        case '>': escaped += "&gt;"; break;
        case '"': escaped += "&quot;"; break;
        default:
            if (isPlain(c)) escaped += c;
        }
    }
    return escaped;
}

std::string_view TrimAtNul(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

std::string AnsiBytesToString(std::string_view bytes) {
    if (bytes.empty()) return {};
    return DecodeLine(TrimAtNul(bytes.substr(0, bytes.size() - 1)));
}

} // namespace korvalin
