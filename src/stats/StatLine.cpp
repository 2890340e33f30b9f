#include "stats/StatLine.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "stats/StatRecord.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace korvalin {
namespace {

constexpr std::size_t longestInvalidLine = 10;
constexpr std::size_t oldFieldCount = 7;

// "#...#" or "\"...\"" without its first and last character, whatever they are; nullopt for a piece that is
// not longer than those.
std::optional<std::string_view> Unwrap(std::string_view piece) {
    if (piece.size() <= 2) return std::nullopt;
    const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    std::size_t first = 1;
    while (first < piece.size() && isContinuation(piece[first]))
        ++first;
    std::size_t last = piece.size() - 1;
    while (last > first && isContinuation(piece[last]))
        --last;
    return piece.substr(first, std::max(first, last) - first);
}

// Pieces 1 to 6 of what follows the name: the text before the first comma is nobody's, and so is what comes
// after the sixth piece.
struct Pieces {
    std::array<std::string_view, 6> Text;
    std::size_t Count = 0;
};

Pieces SplitPieces(std::string_view rest) {
    Pieces pieces;
    std::size_t comma = rest.find(',');
    while (comma != std::string_view::npos && pieces.Count < pieces.Text.size()) {
        const std::size_t begin = comma + 1;
        comma = rest.find(',', begin);
        pieces.Text[pieces.Count++] = rest.substr(begin, comma - begin);
    }
    return pieces;
}

std::optional<Date> ParseStatDate(std::string_view piece, const Locale& locale) {
    const auto text = Unwrap(piece);
    if (!text) return std::nullopt;
    if (const auto date = ParseDateIso(*text)) return date;
    return ParseDate(*text, locale);
}

// The absolute value without its fraction.
std::optional<double> ParseBytes(std::string_view piece) {
    std::uint64_t whole = 0;
    const char* const end = piece.data() + piece.size();
    if (const auto read = std::from_chars(piece.data(), end, whole);
        read.ec == std::errc() && read.ptr == end)
        return static_cast<double>(whole);
    const auto number = ParseNumber(piece);
    return number ? std::optional(std::trunc(std::abs(*number))) : std::nullopt;
}

// Numbers of the older files follow the locale of their time.
std::optional<double> ParseOldNumber(std::string_view field, const Locale& locale) {
    if (const auto number = ParseNumber(field)) return number;
    return ParseNumber(ReplaceAll(field, locale.DecimalMark, "."));
}

// "yyyy-mm-dd"
void AppendDay(std::string& text, const DateParts& parts) {
    AppendTwoDigits(text, parts.Year / 100);
    AppendTwoDigits(text, parts.Year % 100);
    text += '-';
    AppendTwoDigits(text, parts.Month);
    text += '-';
    AppendTwoDigits(text, parts.Day);
}

// "hh:mm:ss"
void AppendTime(std::string& text, const DateParts& parts) {
    AppendTwoDigits(text, parts.Hour);
    text += ':';
    AppendTwoDigits(text, parts.Minute);
    text += ':';
    AppendTwoDigits(text, parts.Second);
}

// Dates outside the years that can be read become the first or the last of those.
void AppendDate(std::string& text, Date date) {
    static const Date first = DateSerial(100, 1, 1);
    static const Date last = DateSerial(9999, 12, 31) + TimeSerial(23, 59, 59);
    const DateParts p = SplitDate(std::clamp(date, first, last));
    const bool noDay = p.Year == 1899 && p.Month == 12 && p.Day == 30;
    const bool noTime = p.Hour == 0 && p.Minute == 0 && p.Second == 0;
    text += '#';
    if (!noDay) AppendDay(text, p);
    if (!noDay && !noTime) text += ' ';
    if (!noTime || noDay) AppendTime(text, p);
    text += '#';
}

// Counters of bytes are whole; a rewrite of the file has millions of them.
void AppendNumber(std::string& text, double number) {
    constexpr double exactBelow = 1e15;
    if (!std::signbit(number) && number < exactBelow && number == std::trunc(number)) {
        std::array<char, 16> digits;
        const auto end =
            std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<std::uint64_t>(number));
        text.append(digits.data(), end.ptr);
    } else if (number == std::trunc(number)) {
        fmt::format_to(std::back_inserter(text), "{:.0f}", number);
    } else {
        fmt::format_to(std::back_inserter(text), "{}", number);
    }
}

struct Replacement {
    char From, To;
};

void AppendText(std::string& text, std::string_view value, Replacement unreadable) {
    text += '"';
    const std::size_t begin = text.size();
    // One text that is no UTF-8 would let the whole line be taken for Windows-1252.
    if (IsValidUtf8(value)) {
        text += value;
    } else {
        text += FromWindows1252(value);
    }
    for (std::size_t i = begin; i < text.size(); ++i) {
        char& c = text[i];
        if (c == '\r' || c == '\n' || c == '\0') c = ' ';
        if (c == unreadable.From) c = unreadable.To;
    }
    text += '"';
}

} // namespace

std::optional<StatFields> ParseStatLine(std::string_view line, const Locale& locale) {
    if (line.size() <= longestInvalidLine || line.front() != '"') return std::nullopt;
    const std::size_t quote = line.find('"', 1);
    if (quote == std::string_view::npos || quote < 2) return std::nullopt;
    const Pieces pieces = SplitPieces(line.substr(quote + 1));
    if (pieces.Count < 4) return std::nullopt;
    const auto logIn = ParseStatDate(pieces.Text[0], locale);
    const auto duration = ParseStatDate(pieces.Text[1], locale);
    const auto transmitted = ParseBytes(pieces.Text[2]);
    const auto received = ParseBytes(pieces.Text[3]);
    if (!logIn || !duration || !transmitted || !received) return std::nullopt;
    return StatFields{Trim(line.substr(1, quote - 1)),
                      *logIn,
                      *duration,
                      *transmitted,
                      *received,
                      Unwrap(pieces.Text[4]).value_or(""),
                      Unwrap(pieces.Text[5]).value_or("")};
}

std::optional<StatFields> ParseOldStatLine(std::string_view line, const Locale& locale) {
    const auto fields = Split(line, '\t', oldFieldCount + 1);
    if (fields.size() < oldFieldCount) return std::nullopt;
    const auto logIn = ParseDate(fields[1], locale);
    const auto duration = ParseDate(fields[3], locale);
    const auto transmitted = ParseOldNumber(fields[4], locale);
    const auto received = ParseOldNumber(fields[5], locale);
    if (!logIn || !duration || !transmitted || !received) return std::nullopt;
    return StatFields{fields[0], *logIn, *duration, *transmitted, *received, fields[6], {}};
}

void WriteStatRecord(std::string& text, const StatFields& fields) {
    // A line without a name would not be read; blanks around a name do not count.
    AppendText(text, fields.LineName.empty() ? " " : fields.LineName, {'"', '\''});
    text += ',';
    AppendDate(text, fields.LogIn);
    text += ',';
    AppendDate(text, fields.Duration);
    text += ',';
    AppendNumber(text, fields.BytesTransmitted);
    text += ',';
    AppendNumber(text, fields.BytesReceived);
    text += ',';
    AppendText(text, fields.Info, {',', ';'});
    text += ',';
    AppendText(text, fields.User, {',', ';'});
    text += StatLineEnd;
}

StatFields FieldsOf(const StatRecord& record) {
    return {record.LineName,      record.LogIn, record.Duration, record.BytesTransmitted,
            record.BytesReceived, record.Info,  record.User};
}

} // namespace korvalin
