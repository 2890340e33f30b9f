#include "display/TrayModel.h"

#include "base/Locale.h"
#include "base/Numbers.h"
#include "base/Text.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr std::int32_t blue = 0xFF0000;
constexpr std::int32_t red = 0x0000FF;
constexpr std::int32_t green = 0x008000;
constexpr std::int32_t magenta = 0xFF00FF;

constexpr double bytesPerVolumeUnit = 1'000'000;
constexpr double scaleWithoutRates = 100;
constexpr std::size_t longestTip = 127;

// A value above 0 is seen, however small.
int HeightOf(double value) {
    if (!(value > 0)) return 0;
    return std::max(static_cast<int>(RoundToEven(std::min(value, 1.0) * TrayScale)), 1);
}

TrayBar VolumeBar(const InfoTexts& texts, const PeriodUse& use) {
    const double filled = use.UsedBytes / bytesPerVolumeUnit / texts.TrayMaxVol;
    if (use.FreeBytes == 0 || !use.TrayVol) return {HeightOf(filled), blue};
    if (use.FreeBytes <= use.UsedBytes) return {HeightOf(filled), red};
    const double left = (use.FreeBytes - use.UsedBytes) / use.FreeBytes;
    return {HeightOf(left), left < 1 - use.FractionElapsed ? magenta : green};
}

double RateScale(const InfoTexts& texts, double upload, double download) {
    if (texts.TrayMaxRate >= 1) return texts.TrayMaxRate;
    const double larger = std::max(upload, download);
    return larger == 0 ? scaleWithoutRates : larger;
}

} // namespace

TrayBars MakeTrayBars(const InfoTexts& texts, const PeriodUse& use, const Locale& locale) {
    const double upload = ReadFormattedNumber(texts.RateULText, locale).value_or(0);
    const double download = ReadFormattedNumber(texts.RateDLText, locale).value_or(0);
    const double scale = RateScale(texts, upload, download);
    return {VolumeBar(texts, use), {HeightOf(upload / scale), green}, {HeightOf(download / scale), red}};
}

std::string_view CutTrayTip(std::string_view tip) {
    return FirstCharacters(tip, longestTip);
}

} // namespace korvalin
