#include "display/LiveTexts.h"
#include "fakes/CoreFixture.h"
#include "stats/Aliases.h"
#include "stats/MonthSums.h"

using namespace korvalin;

namespace {

class LiveTextsTest : public CoreFixture {
  protected:
    LiveTextsTest() {
        std::string file = "ENG\tfrmStatistik\t14\tOnline\r\n";
        for (const int n : {9, 10, 11, 12, 13, 14, 16, 17, 22})
            file += "ENG\tmodAllgemein\t" + std::to_string(n) + "\t t" + std::to_string(n) + " \r\n";
        WriteTexts(file);
        settings.SetReg("Language", "ENG");
        EXPECT_TRUE(language.InitProgramTexts());
        texts.LineIndex = 1;
        texts.SampleIndex = 10;
        clock.Advance(100);
        lines.LineCount = 1;
        lines.MonitoredLineType = LineType::Lan;
        lines.AnyLineConnected = true;
        LineRecord& line = lines.LineTable(1);
        line.LineName = line.EntryName = "eth0";
        line.Connected = true;
        line.BytesReceived = 5'500'000;
        line.UnseenReceived = 500'000;
        line.BytesTransmitted = 1'250'000;
        line.Duration = 100 * OneSecond;
        HistorySample& sample = history.Append(1, 1);
        sample.RateDL[2] = 12340;
        sample.RateUL[0] = 999;
        texts.DisplayChoiceUL = 1;
    }

    LineState lines;
    RateHistory history{10, 1};
    UnitFormat units{errors, locale, clock};
    Aliases aliases{settings, errors, clock, units};
    MonthSums monthSums{aliases, lines, errors, clock};
    LiveTexts live{{.LineState = lines,
                    .RateHistory = history,
                    .MonthSums = monthSums,
                    .UnitFormat = units,
                    .Language = language,
                    .Errors = errors}};
    InfoTexts texts;
};

TEST_F(LiveTextsTest, WithoutALineEverythingIsZeroAndOffline) {
    lines.LineCount = 0;
    live.FillInfoStrings(texts);
    EXPECT_EQ(texts.RateDLText, "0.0");
    EXPECT_EQ(texts.PeriodVolumeText, "0.0");
    EXPECT_EQ(texts.CaptionText, "Korvalin - t10");
    EXPECT_EQ(texts.TrayTipText, "Korvalin - t10");
}

TEST_F(LiveTextsTest, RatesAveragesAndVolumesOfAnAdapter) {
    live.FillInfoStrings(texts);
    EXPECT_EQ(texts.RateDLText, "12.3");
    EXPECT_EQ(texts.AvgDLText, "50.0") << "only what came while it was seen";
    EXPECT_EQ(texts.AvgULText, "12.5");
    EXPECT_EQ(texts.VolumeTotalText, "6.8");
    EXPECT_EQ(texts.CaptionText, "Korvalin  t22 1.0 12.3 KB  ");
}

TEST_F(LiveTextsTest, TheTooltipIsMadeOfTheChosenParts) {
    settings.SetReg("eth0_FreeVolume", 1000);
    settings.SetReg("eth0_Up1MB", false);
    StatRecords records;
    records.List.emplace_back();
    records.List[0].LineName = records.Texts.Intern("eth0");
    records.List[0].LogIn = clock.Now();
    records.List[0].BytesReceived = 243.25e6;
    monthSums.CalcStatsThisMonth(records, 0);
    struct {
        int Flags;
        const char* Expected;
    } const rows[] = {{0, ""},
                      {1, "eth0"},
                      {2, "t11 t12 1.0 KB"},
                      {16, "t14 t13 5.5 MB"},
                      {128, " Online 00:01:40"},
                      {64, "t16 250 MB t17 750 MB"},
                      {255,
                       "eth0\nt11 t12 1.0 t13 12.3 KB\nt14 t12 1.3 t13 5.5 MB\nt9 6.8 MB  Online 00:01:40\n"
                       "t16 250 MB t17 750 MB"}};
    for (const auto& row : rows) {
        texts.TrayTextFlags = row.Flags;
        live.FillInfoStrings(texts);
        EXPECT_EQ(texts.TrayTipText, row.Expected) << row.Flags;
    }
    lines.AnyLineConnected = false;
    live.FillInfoStrings(texts);
    EXPECT_EQ(texts.TrayTipText, "Korvalin - t10");
    EXPECT_EQ(texts.AvgDLText, "0.0");
}

TEST_F(LiveTextsTest, AnUnknownUnitCountsAsAThousandAndIsNoted) {
    EXPECT_EQ(units.UnitFactor("kb"), 1000);
    EXPECT_NE(Log().find("noGroup\tunknown unit: kb"), std::string::npos);
    units.SetUnits("KiB", "MiB");
    std::int32_t factor = 0;
    EXPECT_EQ(units.FormatKB(2048, factor, "0.0"), "2.0");
    EXPECT_EQ(factor, 1024);
    EXPECT_EQ(units.SecondsSince(0.0625, false), 5400);
    EXPECT_EQ(units.SecondsSince(clock.Now() - 90 * OneSecond, true), 90);
}

} // namespace
