#include "fakes/CoreFixture.h"

using namespace korvalin;

namespace {

class LiveTextsTest : public CoreFixture {
  protected:
    LiveTextsTest() {
        settings.SetReg("eth0_FreeVolume", 1000);
        settings.SetReg("eth0_Up1MB", false);
        EXPECT_TRUE(StartProgram());
        texts().LineIndex = 1;
        texts().SampleIndex = program->rateHistory.Samples();
        texts().DisplayChoiceUL = 1;
        lines().LineCount = 1;
        lines().AnyLineConnected = true;
        LineRecord& line = lines().LineTable(1);
        line.LineName = line.EntryName = "eth0";
        line.Connected = true;
        line.BytesReceived = 5'500'000;
        line.UnseenReceived = 500'000;
        line.BytesTransmitted = 1'250'000;
        line.Duration = 100 * OneSecond;
        HistorySample& sample = program->rateHistory.Append(1, 1);
        sample.RateDL[2] = 12340;
        sample.RateUL[0] = 999;
    }
    InfoTexts& texts() { return program->infoTexts; }
    LineState& lines() { return program->lines; }
    void Fill() { program->liveTexts.FillInfoStrings(texts()); }
};

TEST_F(LiveTextsTest, RatesAveragesAndVolumesAreAnAdaptersOrZero) {
    Fill();
    EXPECT_EQ(texts().RateDLText, "12.3");
    EXPECT_EQ(texts().AvgDLText, "50.0") << "only what came while it was seen";
    EXPECT_EQ(texts().AvgULText, "12.5");
    EXPECT_EQ(texts().VolumeTotalText, "6.8");
    EXPECT_EQ(texts().CaptionText, "Korvalin  UL/DL 1.0 12.3 KB  ");
    lines().AnyLineConnected = false;
    Fill();
    EXPECT_EQ(texts().TrayTipText + texts().AvgDLText, "Korvalin - Monitor0.0");
    lines().LineCount = 0;
    Fill();
    EXPECT_EQ(texts().RateDLText + texts().PeriodVolumeText, "0.00.0");
    EXPECT_EQ(texts().CaptionText, "Korvalin - Monitor");
}

TEST_F(LiveTextsTest, TheTooltipIsMadeOfTheChosenParts) {
    StatRecords records;
    for (const auto& [day, bytes] : {std::pair(1, 0.0), {0, 243.25e6}}) { // a day of use is over
        StatRecord& record = records.List.emplace_back();
        record.LineName = records.Texts.Intern("eth0");
        record.LogIn = clock.Now() - day;
        record.BytesReceived = bytes;
    }
    program->monthSums.CalcStatsThisMonth(records, 0);
    const std::pair<int, std::string> rows[] = {
        {0, ""},
        {1, "eth0"},
        {2, "Rate UL 1.0 KB"},
        {16, "Vol. DL 5.5 MB"},
        {128, " Duration 00:01:40"},
        {64, "Month 250 MB Free 750 MB\nToday 243 MB Left per day 44 MB Forecast 250 MB"},
        {255, "eth0\nRate UL 1.0 DL 12.3 KB\nVol. UL 1.3 DL 5.5 MB\nVol. 6.8 MB  Duration 00:01:40\n"
              "Month 250 MB Free 750 MB\nToday 243 MB Left per day 44 MB Forecast 250 MB"}};
    for (const auto& [flags, expected] : rows) {
        texts().TrayTextFlags = flags;
        Fill();
        EXPECT_EQ(texts().TrayTipText, expected) << flags;
    }
}

TEST_F(LiveTextsTest, AnUnknownUnitCountsAsAThousandAndIsNoted) {
    UnitFormat units{errors, locale, clock};
    EXPECT_EQ(units.UnitFactor("kb"), 1000);
    EXPECT_NE(Log().find("noGroup\tunknown unit: kb"), std::string::npos);
    units.SetUnits("KiB", "MiB");
    std::int32_t factor = 0;
    EXPECT_EQ(units.FormatKB(2048, factor, "0.0"), "2.0");
    EXPECT_EQ(factor, 1024);
}

} // namespace
