#include "fakes/CoreFixture.h"

using namespace korvalin;

namespace {

/// A screen whose driver has failed.
class BrokenScreen : public Screen {
  public:
    std::optional<ScreenSize> Primary() override { throw NumberedError(31, "no driver"); }
    std::optional<ScreenSize> CurrentDisplayMode() override { throw NumberedError(31, "no driver"); }
};

class SettingsTest : public CoreFixture {
  protected:
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
};

} // namespace

TEST_F(SettingsTest, StoredTextIsConvertedAndPutIntoItsRange) {
    struct {
        std::string_view Name, Text, Expected;
    } const rows[] = {{"TrayTexts", "2.5", "number 2"},
                      {"TrayTexts", "2147483648", "number 0"},
                      {"ChartMax", "0", "number 1"},
                      {"CONNDATAMAX", "9999", "number 3600"},
                      {"CONNDATAMAX", "abc", "number 60"},
                      {"DisplayChoiceDL", "0", "number 3"},
                      {"DisplayChoiceDL", "8", "number 8"},
                      {"DisplayChoiceDL", "9", "number 3"},
                      {"FontSize", "3", "number 8"},
                      {"FontSize", "72", "number 72"},
                      {"LANActive", "9999", "number 9999"},
                      {"LANActive", "10000", "number 10"},
                      {"LANActive", "25000", "number 25"},
                      {"LANActive", "10000000", "number 10000"},
                      {"LANActive", "10000001", "number 10"},
                      {"Opacity", "5", "number 25"},
                      {"Opacity", "300", "number 255"},
                      {"UpdateInterval", "2", "number 4"},
                      {"UpdateIntervalChart", "20", "number 20"},
                      {"UpdateIntervalChart", "21", "number 2"},
                      {"Line1_FreeVolume", "-1", "number 0"},
                      {"Line1_FreeVolume", "2000000", "number 10000"},
                      {"Line1_MonthStartDay", "32", "number 31"},
                      {"Showroom_freehours", "-3", "number -3"},
                      {"AutoShow", "TRUE", "yesno True"},
                      {"autoshow", "yes", "yesno False"},
                      {"Colorado_TrayVol", "true", "yesno True"},
                      {"UpdateNext", "45366.5", "date 2024-03-15 12:00:00"},
                      {"UpdateNext", "2024-03-15 14:05:09", "date 2024-03-15 14:05:09"},
                      {"UpdateNext", "31.02.2024", "date 1899-12-30 00:00:00"},
                      {"GFrom", "1979-12-31", "date 2023-03-15 00:00:00"},
                      {"GFrom", "1980-01-01", "date 1980-01-01 00:00:00"},
                      {"FontName", "12", "text 12"},
                      {"Salmon_1_ALIAS", "12 b", "text 12 b"},
                      {"MON_Left_Alias", "x", "text x"},
                      {"Phone_Colorado", "+49 89 1", "text +49 89 1"}};
    for (const auto& row : rows) {
        Put(row.Name, row.Text);
        EXPECT_EQ(Read(row.Name), row.Expected) << row.Name << " = " << row.Text;
        EXPECT_EQ(Stored(row.Name), row.Text) << "reading must not change what is stored";
    }
}

TEST_F(SettingsTest, MissingSettingReadsItsDefaultAndStoresIt) {
    struct {
        std::string_view Name, Expected, StoredThen;
    } const rows[] = {{"ChartMax", "number 100", "100"},
                      {"fontname", "text Arial", "Arial"},
                      {"LANProt", "yesno True", "True"},
                      {"LineDL3Show", "yesno True", "True"},
                      {"LineDL4Show", "yesno False", ""},
                      {"MON_Left_1280", "number 14150", "14150"},
                      {"mon_top_1024", "number 13130", "13130"},
                      {"STATS_Left", "number 4600", "4600"},
                      {"STATS_State", "number 0", ""},
                      {"GFrom", "date 2023-03-15 00:00:00", ""},
                      {"UpdateLast", "date 1899-12-30 00:00:00", ""},
                      {"Line1_Up1MB", "yesno True", ""},
                      {"FirstRunDate", "text 2024-03-15 12:00:00", "2024-03-15 12:00:00"},
                      {"MON_Left_Alias", "text ", ""}};
    for (const auto& row : rows) {
        EXPECT_EQ(Read(row.Name), row.Expected) << row.Name;
        EXPECT_EQ(Stored(row.Name), row.StoredThen) << row.Name;
        EXPECT_EQ(Read(row.Name), row.Expected) << row.Name << " read again";
    }
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

TEST_F(SettingsTest, MainWindowStaysOnTheScreen) {
    struct {
        std::string_view Name, Text;
        int Expected, WithMultiScreen, WithoutScreen;
    } const rows[] = {
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
    for (const auto& row : rows) {
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
