#include "base/Locale.h"
#include "base/Text.h"
#include "display/TrayModel.h"

using namespace korvalin;

constexpr std::int32_t blue = 0xFF0000;
constexpr std::int32_t red = 0x0000FF;
constexpr std::int32_t green = 0x008000;
constexpr std::int32_t magenta = 0xFF00FF;
constexpr double MB = 1'000'000;

TEST(TrayBars, TheRatesFillTheirBarsByTheScale) {
    struct {
        const char* What;
        const char* Upload;
        const char* Download;
        int TrayMaxRate;
        int UploadHeight, DownloadHeight;
    } const rows[] = {
        {"automatic: the larger is full", "10.0", "40.0", 0, 4, 16},
        {"below 1 is automatic too", "40.0", "10.0", -5, 16, 4},
        {"nothing at all", "0.0", "0.0", 0, 0, 0},
        {"fixed scale", "15.0", "3.0", 30, 8, 2},
        {"beyond the scale", "31.0", "5000000.0", 30, 16, 16},
        {"however small", "0.1", "0.9", 30, 1, 1},
        {"halves go to the even height", "2.5", "3.5", 16, 2, 4},
        {"grouped", "1,024.0", "512.0", 0, 16, 8},
        {"no number", "", "-", 30, 0, 0},
    };
    for (const auto& row : rows) {
        InfoTexts texts;
        texts.RateULText = row.Upload;
        texts.RateDLText = row.Download;
        texts.TrayMaxRate = row.TrayMaxRate;
        const TrayBars bars = MakeTrayBars(texts, {}, Locale());
        EXPECT_EQ(bars.Upload, (TrayBar{row.UploadHeight, green})) << row.What;
        EXPECT_EQ(bars.Download, (TrayBar{row.DownloadHeight, red})) << row.What;
    }
}

TEST(TrayBars, TheVolumeTellsWhatIsUsedOrLeftOfThePeriod) {
    struct {
        const char* What;
        PeriodUse Use;
        TrayBar Expected;
        int TrayMaxVol = 1000;
    } const rows[] = {
        {"no allowance", {250 * MB, 0, true, 0.5}, {4, blue}},
        {"allowance not wanted", {250 * MB, 1000 * MB, false, 0.5}, {4, blue}},
        {"more than the bar holds", {5000 * MB, 0, false, 0}, {16, blue}},
        {"nothing used", {0, 0, false, 0}, {0, blue}},
        {"other scale", {50 * MB, 0, false, 0}, {8, blue}, 100},
        {"6 tenths left, 7 tenths of the time", {400 * MB, 1000 * MB, true, 0.3}, {10, magenta}},
        {"as much left as time", {500 * MB, 1000 * MB, true, 0.5}, {8, green}},
        {"used up exactly", {250 * MB, 250 * MB, true, 0.9}, {4, red}},
        {"used up and more", {2500 * MB, 1000 * MB, true, 0.9}, {16, red}},
    };
    for (const auto& row : rows) {
        InfoTexts texts;
        texts.TrayMaxVol = row.TrayMaxVol;
        EXPECT_EQ(MakeTrayBars(texts, row.Use, Locale()).Volume, row.Expected) << row.What;
    }
}

TEST(TrayTip, IsCutBetweenCharacters) {
    const std::string umlauts = ReplaceAll(std::string(130, 'u'), "u", "ü");
    EXPECT_EQ(CutTrayTip(umlauts), umlauts.substr(0, 2 * 127));
    EXPECT_EQ(CutTrayTip("short"), "short");
}
