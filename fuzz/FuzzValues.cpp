// Texts that stand for values: numbers, dates, passwords, names on their way to a terminal.
#include "Require.h"
#include "base/Date.h"
#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "settings/Password.h"

#include <cmath>

using namespace korvalin;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Locale locale;
    if (const auto number = ParseNumber(text)) Require(std::isfinite(*number));
    static_cast<void>(ParseWholeNumber(text));
    static_cast<void>(ReadFormattedNumber(text, locale));
    if (const auto date = ParseDate(text, locale)) {
        const auto again = ParseDateIso(FormatDateIso(*date));
        Require(again && std::abs(*again - *date) < OneSecond);
    }
    if (const auto scrambled = ScramblePassword(text, 3, 7)) Require(UnscramblePassword(*scrambled) == text);
    static_cast<void>(UnscramblePassword(text));
    const std::string shown = EscapeControls(text);
    Require(IsValidUtf8(shown) && shown.find('\x1b') == std::string::npos);
    Require(IsValidUtf8(DecodeLine(text)));
    return 0;
}
