#include "fakes/CoreFixture.h"
#include "settings/SettingNames.h"

using namespace korvalin;

namespace {

class SettingsTest : public CoreFixture {
  protected:
    void Put(std::string_view name, std::string_view text) {
        registry.RegWriteString(SettingsKeyPath, name, text);
    }
    std::string Stored(std::string_view name) { return registry.RegReadString(SettingsKeyPath, name); }

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
                      {"DisplayChoiceDL", "0", "number 3"},
                      {"LANActive", "9999", "number 9999"},
                      {"LANActive", "10000001", "number 10"},
                      {"Opacity", "5", "number 25"},
                      {"Line1_FreeVolume", "-1", "number 0"},
                      {"Showroom_freehours", "-3", "number -3"},
                      {"Colorado_TrayVol", "true", "yesno True"},
                      {"UpdateNext", "45366.5", "date 2024-03-15 12:00:00"},
                      {"UpdateNext", "31.02.2024", "date 1899-12-30 00:00:00"},
                      {"GFrom", "1979-12-31", "date 2023-03-15 00:00:00"},
                      {"FontName", "12", "text 12"},
                      {"Phone_Colorado", "+49 89 1", "text +49 89 1"}};
    for (const auto& row : rows) {
        Put(row.Name, row.Text);
        EXPECT_EQ(Read(row.Name), row.Expected) << row.Name << " = " << row.Text;
        EXPECT_EQ(Stored(row.Name), row.Text) << "reading must not change what is stored";
    }
}

TEST(SettingNames, ANameIsKnownOrHasANeighbour) {
    const std::pair<const char*, const char*> rows[] = {{"chartmax", ""},
                                                        {"eth0_FREEVOLUME", ""},
                                                        {"Phone_Work", ""},
                                                        {"MON_Left_1920", ""},
                                                        {"LineDL8Show", ""},
                                                        {"CharMax", "ChartMax"},
                                                        {"", "Test"},
                                                        {"_Alias", "GAlias"},
                                                        {"a_b_RoundSecond", "a_b_RoundSeconds"},
                                                        {"Trayvolume_TrayVl", "Trayvolume_TrayVol"}};
    for (const auto& [name, nearest] : rows) {
        EXPECT_EQ(IsSettingName(name), *nearest == 0) << name;
        EXPECT_TRUE(*nearest == 0 || NearestSettingName(name) == nearest) << name;
    }
}

TEST_F(SettingsTest, MissingSettingReadsItsDefaultAndStoresIt) {
    struct {
        std::string_view Name, Expected, StoredThen;
    } const rows[] = {{"ChartMax", "number 100", "100"},
                      {"LineDL3Show", "yesno True", "True"},
                      {"MON_Left_1280", "number 14150", "14150"},
                      {"mon_top_1024", "number 13130", "13130"},
                      {"STATS_Left", "number 4600", "4600"},
                      {"GFrom", "date 2023-03-15 00:00:00", ""},
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
    struct {
        const char* Name;
        SettingValue Value;
        const char* Stored;
    } const rows[] = {{"AutoShow", false, "False"},
                      {"LineUL8Color", 0, "0"},
                      {"UpdateNext", DateSerial(2024, 2, 29) + TimeSerial(23, 59, 59), "2024-02-29 23:59:59"},
                      {"Office_Alias", std::string("  My office "), "My office"}};
    for (const auto& row : rows) {
        settings.SetReg(row.Name, row.Value);
        EXPECT_EQ(Stored(row.Name), row.Stored);
    }
    settings.SetReg("Office_Alias", "   ");
    EXPECT_EQ(settings.StoredNames(), (Lines{"AutoShow", "LineUL8Color", "UpdateNext"}));
}

TEST_F(SettingsTest, MainWindowStaysOnTheScreen) {
    struct {
        std::string_view Name, Text;
        int Expected, WithMultiScreen, WithoutScreen;
    } const rows[] = {
        {"MON_Height", "699", 1500, 699, 1500},          {"MON_Height", "15361", 15360, 15361, 15361},
        {"MON_Width", "500", 3200, 500, 3200},           {"MON_Width", "1000", 1000, 1000, 1000},
        {"MON_Left_1280", "14500", 14500, 14500, 14500}, {"MON_Left_1280", "14501", 14150, 14501, 14501},
        {"mon_left_1280", "-401", -400, -401, -400},     {"MON_Top_1024", "13911", 13130, 13911, 13911}};
    const auto read = [&](std::string_view name, std::string_view text) {
        Put("MON_Width", "4700");
        Put("MON_Height", "1450");
        Put(name, text);
        return std::get<std::int32_t>(settings.GetReg(name));
    };
    for (const auto& row : rows) {
        EXPECT_EQ(read(row.Name, row.Text), row.Expected) << row.Name << " = " << row.Text;
        Put("MultiScreen", "True");
        EXPECT_EQ(read(row.Name, row.Text), row.WithMultiScreen) << row.Name << " = " << row.Text;
        Put("MultiScreen", "False");
        screen.Size.reset();
        EXPECT_EQ(read(row.Name, row.Text), row.WithoutScreen) << row.Name << " = " << row.Text;
        screen.Size = screen.Mode;
    }
    screen.Mode = ScreenSize{1920, 1024};
    EXPECT_EQ(read("MON_Left_1280", "18000"), 18000) << "the display mode is about to change";
    screen.Mode = screen.Size = ScreenSize{100, 100};
    EXPECT_EQ(read("MON_Left_1280", "18000"), -350) << "the window fills the screen";
    registry = FakeRegistry();
    screen.Size.reset();
    EXPECT_EQ(Read("MON_Left_1280") + Stored("MON_Left_1280"), "number 0")
        << "without a screen none is stored";
}

TEST_F(SettingsTest, AYearBeforeALeapDayIsTheFirstOfMarch) {
    clock.SetWallClock(DateSerial(2024, 2, 29) + TimeSerial(23, 59, 59) + 0.9 * OneSecond);
    EXPECT_EQ(Read("GFrom"), "date 2023-03-01 00:00:00");
    EXPECT_EQ(Read("GTill"), "date 2024-02-29 00:00:00");
}

TEST_F(SettingsTest, NumbersMayHaveTheUsersDecimalMark) {
    locale.DecimalMark = ",";
    for (const char* typed : {"1200,6", "1200.6"})
        EXPECT_EQ(Show(settings.GetRegValidate("TrayMaxVol", typed)), "number 1201");
}

TEST_F(SettingsTest, PasswordsAreStoredScrambledOrNotAtAll) {
    settings.SetRegPassword(Keys::FirewallPassword, "größer");
    EXPECT_EQ(Stored("FirewallPassword").find_first_not_of("0123456789"), std::string::npos);
    settings.SetRegPassword(Keys::FirewallPassword, "\xF4\x8F\xBF\xBF");
    EXPECT_NE(boxes.Take().Text.find("SetRegPassword"), std::string::npos);
    EXPECT_EQ(settings.GetRegPassword(Keys::FirewallPassword), "größer") << "the old one is kept";
    settings.SetRegPassword(Keys::FirewallPassword, "a\xF6"); // Windows-1252
    EXPECT_EQ(settings.GetRegPassword(Keys::FirewallPassword), "aö");
    settings.SetRegPassword(Keys::FirewallPassword, "");
    EXPECT_TRUE(settings.StoredNames().empty());

    clock.Advance(3);
    Put("FirewallPassword", "00x0x1a");
    EXPECT_EQ(settings.GetRegPassword(Keys::FirewallPassword), "");
    EXPECT_NE(boxes.Take().Text.find("GetRegPassword"), std::string::npos);
}
