#include "lang/Language.h"

#include "fakes/Ground.h"
#include "lang/LanguageFile.h"

#include <fmt/format.h>

namespace korvalin {
namespace {

class LanguageTest : public ::testing::Test, protected Ground {
  protected:
    bool Load(std::string_view language, std::string_view lines) {
        WriteTexts(lines);
        Settings.SetReg("Language", std::string(language));
        return Language.InitProgramTexts();
    }
};

TEST_F(LanguageTest, LooksUpTheChosenLanguageAndWhatBelongsToAll) {
    ASSERT_TRUE(Load("ENG", "ENG\tfrmMainObj\t5\t\"&File\"\t\"\"quoted\" tip\"\tmore\r\n"
                            "GER\tfrmMainObj\t6\tDatei\n"
                            " ENG \t frmMainObj \t 7 \t two blanks \r\n"
                            "eng\tfrmMainObj\t8\tother case\n"
                            "ENG\tfrmMainObj\t9\n"
                            "ENG\tfrmMainObj\t1234\ttoo long\n"
                            "ENG\tlngDefinition\tGER\tnot for one language\n"
                            "LNG\tlngDefinition\tENG\tENG - English\n"
                            "LNG\tfrmMainObj\tabc\tkey\n"
                            "ENG\t\t5\tno section\n"
                            "ENG\tfrmMainObj\t10\tlast line without an end"));
    struct {
        const char* Section;
        const char* Number;
        bool Tooltip;
        const char* Expected;
    } const rows[] = {
        {"frmMainObj", "5", false, "&File"},
        {"FRMMAINOBJ", "005", true, "\"quoted\" tip\"\tmore"},
        {"frmMainObj", "6", false, ""},
        {"frmMainObj", "7", false, " two blanks "},
        {"frmMainObj", "8", false, ""},
        {"frmMainObj", "9", true, ""},
        {"frmMainObj", "1234", false, ""},
        {"lngDefinition", "eng", false, "ENG - English"},
        {"frmMainObj", "ABC", false, "key"},
        {"lngDefinition", "GER", false, "GER - language"},
        {"frmMainObj", "10", false, "last line without an end"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Language.Lng(row.Section, row.Number, row.Tooltip), row.Expected) << row.Number;
    }
    EXPECT_EQ(Language.Lng("frmMainObj", 7, false, true), "two blanks");
}

TEST_F(LanguageTest, TakesEveryEncodingAndLineEndForTheSameText) {
    for (const std::string lines : {"GER\ts\t1\tMenü – 5 €\r\n", "GER\ts\t1\tMen\xFC \x96 5 \x80\n"}) {
        ASSERT_TRUE(Load("GER", lines));
        EXPECT_EQ(Language.Lng("s", 1), "Menü – 5 €");
    }
}

TEST_F(LanguageTest, LogsFaultsOfTheFileAndKeepsTheFirstText) {
    ASSERT_TRUE(Load("GER", "GER\tmodGlobal\t201\tfirst\nGER\tmodGlobal\t201\tsecond\n"
                            "GER\tfrmA\t1\t&Datei\nGER\tfrmA\t2\t&Drucken\nGER\tfrmB\t1\t&Datum\n"
                            "GER\tfrmA\t3\tno key&\nENG\tfrmA\t1\t&Dark\n"));
    EXPECT_EQ(Language.Lng("modGlobal", 201), "first");
    EXPECT_EQ(Log(), (Lines{"language file: double entry: modGlobal 201",
                            "language file: double entry: modGlobal 201",
                            "text file: Double shortkey in frmA: &Drucken and &Datei"}));
}

TEST_F(LanguageTest, LogsAMissingTextOncePerLoad) {
    ASSERT_TRUE(Load("GER", "GER\ts\t1\tx\n"));
    EXPECT_EQ(Language.Lng("s", 2), "");
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(Language.Lng("s", 2, false, true, true), "text not found");
        EXPECT_EQ(Language.Lng("s", 2, true, true, true), "text not found");
    }
    EXPECT_EQ(Log(), (Lines{"language GER: text not found s 002C", "language GER: text not found s 002T"}));
    Language.LoadLanguageTexts();
    Language.Lng("s", 2, false, false, true);
    EXPECT_EQ(Log().size(), 3U);
}

TEST_F(LanguageTest, SurvivesDamagedFiles) {
    const std::string good = "GER\ts\t1\tx\n";
    std::string twins;
    while (twins.size() < 6'000'000)
        twins += good;
    std::string codes;
    for (int n = 0; n < 300'000; ++n)
        codes += fmt::format("{:03x}\n", n % 4096);
    struct {
        std::string Content;
        bool Loads;
    } const rows[] = {
        {"", false},
        {"GER\ts\t1\theader only", false},
        {"h\nGER\ts", false},
        {std::string("h\nGER\ts\t1\tx\0\n", 13), false},
        {std::string(3'000'000, '\0') + "\n" + good, true},
        {"h\n" + std::string(3'000'000, 'x') + "\n" + good, true},
        {"h\n" + std::string(64 * 1024 - 1, 'x') + "\n" + good, true},
        {"h\n\xFF\xFE\t\xC3\t\x80\n" + good, true},
        {"h\n" + twins, true},
        {"h\n" + codes, false},
    };
    Settings.SetReg("Language", "GER");
    for (const auto& row : rows) {
        Folder.Write("program/Korvalin.lng", row.Content);
        EXPECT_EQ(Language.InitProgramTexts(), row.Loads) << row.Content.substr(0, 30);
        EXPECT_EQ(Language.Lng("s", 1), row.Loads ? "x" : "");
        EXPECT_LE(Language.LanguageCodes().size(), 100U);
        TakeBoxes();
    }
    EXPECT_LE(Log().size(), 1000U);
}

TEST_F(LanguageTest, ListsTheLanguagesInTheFilesOrder) {
    struct {
        const char* Lines;
        std::vector<std::string> Expected;
    } const rows[] = {
        {"", {"GER"}},
        {"LNG\tx\nENGL\tx\n#GER\tx\nEN\tx\n", {"GER"}},
        {" FRA \tx\nENG#\tx\nFRA\tx\neng\tx\n\xC4\xD6\xDC", {"FRA", "ENG", "eng", "ÄÖÜ"}},
    };
    for (const auto& row : rows) {
        WriteTexts(row.Lines);
        EXPECT_TRUE(Language.LoadLanguageChoices());
        EXPECT_EQ(Language.LanguageCodes(), row.Expected);
    }
    std::filesystem::remove(Language.LanguageFilePath());
    EXPECT_FALSE(Language.LoadLanguageChoices());
    EXPECT_EQ(Language.LanguageCodes(), Lines{"GER"});
}

TEST_F(LanguageTest, StartsWithTheStoredLanguageOrSaysWhyNot) {
    const std::string problem = "Language file " + Language.LanguageFilePath().string() +
                                " could not be found or is incomplete for language ";
    const std::string tryAgain = ". Program will be set to default language GER. Try again.";
    const std::string giveUp = ". Program can not be run. Contact software vendor.";
    struct {
        const char* Stored;
        const char* Lines;
        bool Loads;
        const char* Code;
        std::vector<std::string> Shown;
        const char* StoredAfter;
    } const rows[] = {
        {"ENG", "GER\ts\t1\tx\nENG\ts\t1\ty\n", true, "ENG", {}, "ENG"},
        {"FRA", "GER\ts\t1\tx\nENG\ts\t1\ty\n", true, "GER", {}, "GER"},
        {"LNG", "GER\ts\t1\tx\n", true, "GER", {}, "GER"},
        {"", "GER\ts\t1\tx\n", true, "GER", {}, ""},
        {"ENGL", "GER\ts\t1\tx\n", true, "GER", {}, "ENGL"},
        {"ENG", "GER\ts\t1\tx\nENG\ts\n", false, "ENG", {problem + "ENG" + tryAgain}, "GER"},
        {"GER", "", false, "GER", {problem + "GER" + giveUp}, "GER"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Load(row.Stored, row.Lines), row.Loads) << row.Stored;
        EXPECT_EQ(Language.LanguageCode(), row.Code);
        EXPECT_EQ(TakeBoxes(), row.Shown);
        EXPECT_EQ(Settings.GetText("Language"), row.StoredAfter);
    }
}

TEST_F(LanguageTest, TellsAboutAFileThatCannotBeRead) {
    // Opens, but gives an error for its first byte, also to the superuser.
    const std::filesystem::path unreadable = "/proc/self/mem";
    if (!std::filesystem::exists(unreadable)) GTEST_SKIP() << "no unreadable file on this system";
    std::filesystem::create_symlink(unreadable, Language.LanguageFilePath());
    EXPECT_FALSE(Language.LoadLanguageTexts());
    EXPECT_EQ(TakeBoxes(), Lines{"LoadLanguageTexts, 0, The language file cannot be read."});
}

TEST_F(LanguageTest, AsksForTheLanguageAtTheFirstStart) {
    Language.PlugAskLanguage(
        [this] { EXPECT_EQ(Language.FillLanguageChoices().Names, Lines{"GER - language"}); });
    EXPECT_FALSE(Language.InitProgramTexts());
    EXPECT_EQ(TakeBoxes().size(), 1U);
    EXPECT_FALSE(std::filesystem::exists(Language.LanguageFilePath())); // it makes none of its own
    WriteTexts("GER\ts\t1\tx\nENG\ts\t1\ty\nFRA\ts\t1\tz\nLNG\tlngDefinition\tGER\tGER - Deutsch\n"
               "LNG\tlngDefinition\tFRA\tFRA - Français");
    Shell.Language = "fr";
    std::size_t selected = 0;
    Language.PlugAskLanguage([&] {
        const auto choices = Language.FillLanguageChoices();
        EXPECT_EQ(choices.Names, (Lines{"GER - Deutsch", "ENG - language", "FRA - Français"}));
        EXPECT_FALSE(Language.ChooseLanguage("XXX - unknown"));
        selected = choices.Selected;
        EXPECT_TRUE(Language.ChooseLanguage(choices.Names[2]));
        EXPECT_EQ(Language.Lng("s", 1), "z");
        EXPECT_FALSE(Language.ChooseLanguage(choices.Names[2]));
    });
    EXPECT_TRUE(Language.InitProgramTexts());
    EXPECT_EQ(selected, 1U); // English for whoever speaks no German
    EXPECT_EQ(Settings.GetText("Language"), "FRA");
    EXPECT_EQ(Language.FillLanguageChoices().Selected, 2U);
    const std::string file = Folder.Read("program/Korvalin.lng");
    EXPECT_TRUE(file.ends_with("Français\r\nLNG\tlngDefinition\tENG\tENG - language\r\n")) << file;
}

TEST(ParseLngNo, ReadsTheMark) {
    struct {
        const char* Tag;
        int Expected;
    } const rows[] = {{"#LngNo:5", 5},   {"x #LngNo: 12.9 y", 12},
                      {"#LngNo:-", -1},  {"#LngNo: - ", -1},
                      {"#LngNo:-7", 7},  {"#LngNo:0", 0},
                      {"#LngNo:abc", 0}, {"#LngNo:", 0},
                      {"LngNo:5", 0},    {"", 0},
                      {"#LngNo:-x", 0},  {"#LngNo:99999999999", INT_MAX}};
    for (const auto& row : rows)
        EXPECT_EQ(Language::ParseLngNo(row.Tag), row.Expected) << row.Tag;
}

} // namespace
} // namespace korvalin
