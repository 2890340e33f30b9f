#include "settings/Settings.h"

#include "errors/Errors.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFiles.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/FakeRegistry.h"
#include "fakes/FakeScreen.h"

using namespace korvalin;

namespace {

/// A screen whose driver has failed.
class BrokenScreen : public Screen {
  public:
    std::optional<ScreenSize> Primary() override { throw NumberedError(31, "no driver"); }
    std::optional<ScreenSize> CurrentDisplayMode() override { throw NumberedError(31, "no driver"); }
};

class SettingsTest : public testing::Test {
  protected:
    ~SettingsTest() override { EXPECT_EQ(registry.OpenKeys, 0) << "a key was left open"; }

    void Put(std::string_view name, std::string_view text) {
        settings.Primitives().RegWriteString(SettingsKeyPath, name, text);
    }
    std::string Stored(std::string_view name) {
        return settings.Primitives().RegReadString(SettingsKeyPath, name);
    }

    /// Kind and text of a value, as in "number 60".
    static std::string Show(const SettingValue& value) {
        const std::array<std::string, 4> kinds = {"yesno ", "number ", "date ", "text "};
        return kinds[value.index()] + Settings::TextForm(value);
    }
    std::string Read(std::string_view name) { return Show(settings.GetReg(name)); }

    FakeClock clock; // 15 March 2024, noon
    FakeFiles files;
    FakeMessageBoxes boxes;
    Locale locale;
    Errors errors{clock, files, boxes, locale, "Korvalin"};
    FakeRegistry registry;
    FakeScreen screen; // 19200 x 15360 twips
    Settings settings{registry, errors, screen, clock, locale};
};

} // namespace

TEST_F(SettingsTest, StoredNumbersArePutIntoTheirRange) {
    struct Row {
        std::string_view Name;
        std::vector<std::pair<std::string_view, int>> TextAndNumber;
    };
    const Row rows[] = {
        {"TrayTexts", {{"2.5", 2}, {"3.5", 4}, {"2147483648", 0}, {"-7", -7}, {"x", 0}}},
        {"ChartMax", {{"0", 1}}},
        {"CONNDATAMAX", {{"30", 60}, {"9999", 3600}, {"abc", 60}}},
        {"DisplayChoiceDL", {{"0", 3}, {"1", 1}, {"8", 8}, {"9", 3}}},
        {"FontSize", {{"3", 8}, {"4", 4}, {"72", 72}, {"73", 8}}},
        {"GMaxPeriods", {{"0", 12}, {"1001", 1000}}},
        {"GPeriodType", {{"-1", 2}, {"0", 0}, {"3", 2}}},
        {"PicWidthMin", {{"0", 1}, {"61", 60}}},
        {"LANActive", {{"10", 10}, {"9999", 9999}, {"10000", 10}, {"25000", 25}}},
        {"LANActive", {{"10000000", 10000}, {"10000001", 10}, {"20000000", 10}}},
        {"STATS_State", {{"1", 0}, {"2", 2}}},
        {"TimeLinesSec", {{"4", 5}, {"301", 300}}},
        {"Opacity", {{"5", 25}, {"10", 10}, {"300", 255}}},
        {"TrayMaxVol", {{"9", 10}}},
        {"UpdateInterval", {{"1", 1}, {"2", 4}, {"4", 4}}},
        {"UpdateIntervalChart", {{"-1", 0}, {"20", 20}, {"21", 2}}},
        {"Line1_FreeVolume", {{"-1", 0}, {"1000000", 1000000}, {"2000000", 10000}}},
        {"Line1_MonthStartDay", {{"0", 1}, {"32", 31}}},
        {"Line1_RoundSeconds", {{"0", 1}, {"61", 60}}},
        {"Showroom_freehours", {{"-3", -3}}},
    };
    for (const Row& row : rows) {
        for (const auto& [text, number] : row.TextAndNumber) {
            Put(row.Name, text);
            EXPECT_EQ(Show(settings.GetReg(row.Name)), Show(number)) << row.Name << " = " << text;
            EXPECT_EQ(Stored(row.Name), text) << "reading must not change what is stored";
        }
    }
}

TEST_F(SettingsTest, StoredTextIsConvertedToTheKindOfTheSetting) {
    struct Row {
        std::string_view Name, Text;
        std::string Expected;
    };
    const Row rows[] = {
        {"AutoShow", "TRUE", "yesno True"},
        {"autoshow", "yes", "yesno False"},
        {"ShowLineName", "1", "yesno False"},
        {"Line1_Up1MB", "False", "yesno False"},
        {"Colorado_TrayVol", "true", "yesno True"},
        {"UpdateNext", "2024-03-15 14:05:09", "date 2024-03-15 14:05:09"},
        {"UpdateNext", "45366.5", "date 2024-03-15 12:00:00"},
        {"UpdateNext", "31.02.2024", "date 1899-12-30 00:00:00"},
        {"UpdateNext", "2958466", "date 1899-12-30 00:00:00"},
        {"GFrom", "1979-12-31", "date 2023-03-15 00:00:00"},
        {"GFrom", "1980-01-01", "date 1980-01-01 00:00:00"},
        {"GTill", "5", "date 2024-03-15 00:00:00"},
        {"FirstRunDate", "2020-02-03 04:05:06", "text 2020-02-03 04:05:06"},
        {"FontName", "12", "text 12"},
        {"Showroom_Alias", "Shop", "text Shop"},
        {"Salmon_1_ALIAS", "12 b", "text 12 b"},
        {"MON_Left_Alias", "x", "text x"},
        {"Phone_Colorado", "+49 89 1", "text +49 89 1"},
    };
    for (const Row& row : rows) {
        Put(row.Name, row.Text);
        EXPECT_EQ(Read(row.Name), row.Expected) << row.Name << " = " << row.Text;
        EXPECT_EQ(Stored(row.Name), row.Text) << "reading must not change what is stored";
    }
}

TEST_F(SettingsTest, MissingSettingReadsItsDefaultAndStoresIt) {
    struct Row {
        std::string_view Name;
        std::string Expected, StoredThen;
    };
    const Row rows[] = {{"ChartMax", "number 100", "100"},
                        {"fontname", "text Arial", "Arial"},
                        {"LANProt", "yesno True", "True"},
                        {"ShowTitle", "yesno False", "False"},
                        {"LineUL8Color", "number 0", "0"},
                        {"LineDL3Show", "yesno True", "True"},
                        {"LineDL4Show", "yesno False", ""},
                        {"UpdateInterval", "number 1", "1"},
                        {"MON_Left_1280", "number 14150", "14150"},
                        {"mon_top_1024", "number 13130", "13130"},
                        {"STATS_Left", "number 4600", "4600"},
                        {"STATS_Top", "number 4180", "4180"},
                        {"STATS_State", "number 0", ""},
                        {"UpdateIntervalChart", "number 0", ""},
                        {"GFrom", "date 2023-03-15 00:00:00", ""},
                        {"GTill", "date 2024-03-15 00:00:00", ""},
                        {"UpdateLast", "date 1899-12-30 00:00:00", ""},
                        {"FirstRunDate", "text 2024-03-15 12:00:00", "2024-03-15 12:00:00"},
                        {"Line1_Up1MB", "yesno True", ""},
                        {"Line1_TrayVol", "yesno False", ""},
                        {"Line1_RoundSeconds", "number 1", ""},
                        {"MON_Left_Alias", "text ", ""},
                        {"DataPath", "text ", ""}};
    for (const Row& row : rows) {
        EXPECT_EQ(Read(row.Name), row.Expected) << row.Name;
        EXPECT_EQ(Stored(row.Name), row.StoredThen) << row.Name;
        EXPECT_EQ(Read(row.Name), row.Expected) << row.Name << " read again";
    }
}

TEST_F(SettingsTest, DefaultOnlyOverwritesWhatIsStored) {
    settings.SetReg("ChartBackgroundColor", 255);
    EXPECT_EQ(Show(settings.GetReg("ChartBackgroundColor", true)), "number 15323561");
    EXPECT_EQ(Stored("ChartBackgroundColor"), "15323561");
}

TEST_F(SettingsTest, EveryKindIsStoredAsTextWithoutBlanksAround) {
    settings.SetReg("AutoShow", false);
    settings.SetReg("LineUL8Color", 0);
    settings.SetReg("UpdateNext", DateSerial(2024, 2, 29) + TimeSerial(23, 59, 59));
    settings.SetReg("Office_Alias", "  My office ");
    EXPECT_EQ(Stored("AutoShow"), "False");
    EXPECT_EQ(Stored("LineUL8Color"), "0");
    EXPECT_EQ(Stored("UpdateNext"), "2024-02-29 23:59:59");
    EXPECT_EQ(Stored("Office_Alias"), "My office");
    EXPECT_EQ(settings.StoredNames(),
              (std::vector<std::string>{"AutoShow", "LineUL8Color", "Office_Alias", "UpdateNext"}));

    settings.SetReg("Office_Alias", "   ");
    settings.SetReg("LineUL8Color", "");
    EXPECT_EQ(settings.StoredNames(), (std::vector<std::string>{"AutoShow", "UpdateNext"}));
}

TEST_F(SettingsTest, ACallerMayAskForAnotherKind) {
    Put("FirstRunDate", "2020-02-03 04:05:06");
    Put("FontName", "12");
    EXPECT_EQ(FormatDateIso(settings.GetDate("FirstRunDate")), "2020-02-03 04:05:06");
    EXPECT_EQ(settings.GetNumber("FontName"), 12);
    EXPECT_EQ(settings.GetText("ChartMax"), "100");
    EXPECT_FALSE(settings.GetBool("ChartMax"));
}

TEST_F(SettingsTest, MainWindowStaysOnTheScreen) {
    struct Row {
        std::string_view Name, Text;
        int Expected, WithMultiScreen, WithoutScreen;
    };
    const Row rows[] = {
        {"MON_Height", "699", 1500, 699, 1500},          {"MON_Height", "20000", 15360, 20000, 20000},
        {"MON_Width", "500", 3200, 500, 3200},           {"MON_Width", "1000", 1000, 1000, 1000},
        {"MON_Width", "19201", 19200, 19201, 19201},     {"MON_Left_1280", "14500", 14500, 14500, 14500},
        {"MON_Left_1280", "14501", 14150, 14501, 14501}, {"mon_left_1280", "-401", -400, -401, -400},
        {"MON_Top_1024", "13911", 13130, 13911, 13911},  {"MON_Top_1024", "13910", 13910, 13910, 13910},
        {"MON_Top_1024", "-9999", -400, -9999, -400}};
    const auto sizes = [&] {
        Put("MON_Width", "4700");
        Put("MON_Height", "1450");
    };
    for (const Row& row : rows) {
        const auto read = [&] {
            sizes();
            Put(row.Name, row.Text);
            return settings.GetNumber(row.Name);
        };
        EXPECT_EQ(read(), row.Expected) << row.Name << " = " << row.Text;
        Put("MultiScreen", "True");
        EXPECT_EQ(read(), row.WithMultiScreen) << row.Name << " = " << row.Text;
        Put("MultiScreen", "False");
        screen.Size.reset();
        EXPECT_EQ(read(), row.WithoutScreen) << row.Name << " = " << row.Text;
        screen.Size = screen.Mode;
    }
    sizes();
    Put("MON_Left_1280", "18000");
    screen.Mode = ScreenSize{1920, 1024};
    EXPECT_EQ(settings.GetNumber("MON_Left_1280"), 18000) << "the display mode is about to change";
    screen.Mode = screen.Size = ScreenSize{100, 100};
    EXPECT_EQ(settings.GetNumber("MON_Left_1280"), -350) << "the window fills the screen";
}

TEST_F(SettingsTest, WithoutAScreenNoPositionIsStored) {
    screen.Size.reset();
    for (const char* name : {"MON_Left_1280", "MON_Top_1024", "STATS_Left", "STATS_Top"}) {
        EXPECT_EQ(Read(name), "number 0");
        EXPECT_EQ(Stored(name), "");
    }
}

TEST_F(SettingsTest, AbsurdWindowSizesDoNotOverflow) {
    Put("STATS_Height", "-2147483648");
    Put("STATS_Width", "2147483647");
    Put("MultiScreen", "True");
    Put("MON_Width", "-2147483648");
    EXPECT_EQ(settings.GetNumber("STATS_Top"), 1073749504);
    EXPECT_EQ(settings.GetNumber("STATS_Left"), -1073732224); // half of an odd number, to even
    EXPECT_EQ(settings.GetNumber("MON_Left_1280"), 2147483647);
}

TEST_F(SettingsTest, AYearBeforeALeapDayIsTheFirstOfMarch) {
    clock.SetWallClock(DateSerial(2024, 2, 29) + TimeSerial(23, 59, 59) + 0.9 * OneSecond);
    EXPECT_EQ(Read("GFrom"), "date 2023-03-01 00:00:00");
    EXPECT_EQ(Read("GTill"), "date 2024-02-29 00:00:00");
}

TEST_F(SettingsTest, NumbersMayHaveTheUsersDecimalMark) {
    locale.DecimalMark = ",";
    EXPECT_EQ(Show(settings.GetRegValidate("TrayMaxVol", "1200,6")), "number 1201");
    EXPECT_EQ(Show(settings.GetRegValidate("TrayMaxVol", "1200.6")), "number 1201");
}

TEST_F(SettingsTest, ARegistryThatRefusesStillYieldsDefaults) {
    for (const int code : {ErrorAccessDenied, ErrorFileNotFound, ErrorBadKey}) {
        registry.OpenResult = code;
        settings.SetReg("ChartMax", 7);
        EXPECT_EQ(Read("ChartMax"), "number 100");
        EXPECT_EQ(Read("MON_Left_1280"), "number 14150");
        EXPECT_TRUE(settings.StoredNames().empty());
    }
}

TEST_F(SettingsTest, AFailingStepIsReportedAndTheNextOnesRun) {
    BrokenScreen broken;
    Settings onBroken(registry, errors, broken, clock, locale);
    EXPECT_EQ(Show(onBroken.GetRegValidate("MON_Width", "700")), "number 3200");
    EXPECT_EQ(Show(onBroken.GetRegValidate("STATS_Left", "")), "number 0");
    const std::string text = boxes.Take().Text;
    EXPECT_NE(text.find("GetRegValidate"), std::string::npos) << text;
    EXPECT_NE(text.find("31"), std::string::npos) << text;
    boxes.Shown.clear();
    EXPECT_EQ(Stored("STATS_Left"), "");
}

TEST_F(SettingsTest, PasswordsAreStoredScrambled) {
    for (const char* password : {"geheim", "größer", "x"}) {
        settings.SetRegPassword("FirewallPassword", password);
        EXPECT_EQ(Stored("FirewallPassword").find_first_not_of("0123456789"), std::string::npos);
        EXPECT_EQ(settings.GetRegPassword("firewallpassword"), password);
    }
    settings.SetRegPassword("FirewallPassword", "a\xF6"); // Windows-1252
    EXPECT_EQ(settings.GetRegPassword("FirewallPassword"), "aö");
    settings.SetRegPassword("FirewallPassword", "");
    EXPECT_EQ(settings.GetRegPassword("FirewallPassword"), "");
    EXPECT_TRUE(settings.StoredNames().empty());
}

TEST_F(SettingsTest, APasswordThatCannotBeStoredIsReportedAndTheOldOneKept) {
    settings.SetRegPassword("FirewallPassword", "old");
    settings.SetRegPassword("FirewallPassword", "\xF4\x8F\xBF\xBF");
    EXPECT_NE(boxes.Take().Text.find("SetRegPassword"), std::string::npos);
    EXPECT_EQ(settings.GetRegPassword("FirewallPassword"), "old");

    clock.Advance(3);
    Put("FirewallPassword", "00x0x1a");
    EXPECT_EQ(settings.GetRegPassword("FirewallPassword"), "");
    EXPECT_NE(boxes.Take().Text.find("GetRegPassword"), std::string::npos);
}
