#include "fakes/CoreFixture.h"
#include "lang/Language.h"

using namespace korvalin;

namespace {

class LanguageTest : public CoreFixture {
  protected:
    bool Load(std::string_view code, std::string_view lines) {
        WriteTexts(lines);
        settings.SetReg("Language", std::string(code));
        return language.InitProgramTexts();
    }
    // The lines of the log without their times.
    Lines LogLines() const {
        Lines entries;
        std::istringstream log(Log());
        for (std::string line; std::getline(log, line);)
            entries.push_back(line.substr(20, line.size() - 21));
        return entries;
    }
};

TEST_F(LanguageTest, LooksUpTheChosenLanguageAndWhatBelongsToAll) {
    ASSERT_TRUE(Load("ENG", "ENG\tfrmMainObj\t5\t\"&File\"\t\"\"quoted\" tip\"\tmore\r\n"
                            "GER\tfrmMainObj\t6\tDatei\n"
                            " ENG \t frmMainObj \t 7 \t two blanks \r\n"
                            "eng\tfrmMainObj\t8\tother case\n"
                            "ENG\tlngDefinition\tGER\tnot for one language\n"
                            "LNG\tlngDefinition\tENG\tENG - English\n"
                            "ENG\tfrmMainObj\t9\tMen\xFC \x96 5 \x80\n"
                            "ENG\tfrmMainObj\t10\tlast line – without an end"));
    struct {
        const char *Section, *Number;
        bool Tooltip;
        const char* Expected;
    } const rows[] = {{"frmMainObj", "5", false, "&File"},
                      {"FRMMAINOBJ", "005", true, "\"quoted\" tip\"\tmore"},
                      {"frmMainObj", "7", false, " two blanks "},
                      {"frmMainObj", "8", false, ""},
                      {"lngDefinition", "eng", false, "ENG - English"},
                      {"lngDefinition", "GER", false, "GER - language"},
                      {"frmMainObj", "9", false, "Menü – 5 €"},
                      {"frmMainObj", "10", false, "last line – without an end"}};
    for (const auto& row : rows)
        EXPECT_EQ(language.Lng(row.Section, row.Number, {.Tooltip = row.Tooltip}), row.Expected)
            << row.Number;
    EXPECT_EQ(language.Lng("frmMainObj", 7, {.TrimIt = true}), "two blanks");
}

TEST_F(LanguageTest, LogsFaultsOfTheFileAndKeepsTheFirstText) {
    ASSERT_TRUE(Load("GER", "GER\tmodGlobal\t201\tfirst\nGER\tmodGlobal\t201\tsecond\n"
                            "GER\tfrmA\t1\t&Datei\nGER\tfrmA\t2\t&Drucken\nGER\tfrmB\t1\t&Datum\n"
                            "GER\tfrmA\t3\tno key&\nENG\tfrmA\t1\t&Dark\n"));
    EXPECT_EQ(language.Lng("modGlobal", 201), "first");
    EXPECT_EQ(LogLines(), (Lines{"language file\tdouble entry: modGlobal 201",
                                 "language file\tdouble entry: modGlobal 201",
                                 "text file\tDouble shortkey in frmA: &Drucken and &Datei"}));
}

TEST_F(LanguageTest, LogsAMissingTextOncePerLoad) {
    ASSERT_TRUE(Load("GER", "GER\ts\t1\tx\n"));
    for (int load = 1; load <= 2; ++load) {
        for (const bool tooltip : {false, false, true, true})
            EXPECT_EQ(language.Lng("s", 2, {.Tooltip = tooltip, .TrimIt = true, .ReportMissing = true}),
                      "text not found");
        EXPECT_EQ(LogLines().size(), 2U * load);
        language.LoadLanguageTexts();
    }
    EXPECT_EQ(LogLines()[1], "language GER\ttext not found s 002T");
}

TEST_F(LanguageTest, SurvivesDamagedFiles) {
    const std::string good = "GER\ts\t1\tx\n";
    const std::pair<std::string, bool> rows[] = {
        {"", false},
        {std::string("h\nGER\ts\t1\tx\0\n", 13), false},
        {std::string(3'000'000, '\0') + "\n" + good, true},
        {"h\n\xFF\xFE\t\xC3\t\x80\n" + good, true},
        {"h\n" + ReplaceAll(std::string(500'000, 'x'), "x", good), true}};
    settings.SetReg("Language", "GER");
    for (const auto& [content, loads] : rows) {
        folder.Write("program/Korvalin.lng", content);
        EXPECT_EQ(language.InitProgramTexts(), loads) << content.substr(0, 30);
        EXPECT_EQ(language.Lng("s", 1), loads ? "x" : "");
        TakeBoxes();
    }
    EXPECT_LE(LogLines().size(), 1000U);
}

TEST_F(LanguageTest, ListsTheLanguagesInTheFilesOrder) {
    WriteTexts(" FRA \tx\nENG#\tx\nEN\tx\nLNG\tx\nFRA\tx\neng\tx\n\xC4\xD6\xDC");
    EXPECT_TRUE(language.LoadLanguageChoices());
    EXPECT_EQ(language.LanguageCodes(), (Lines{"FRA", "ENG", "eng", "ÄÖÜ"}));
}

TEST_F(LanguageTest, StartsWithTheStoredLanguageOrSaysWhyNot) {
    const std::string problem = "Language file " + language.LanguageFilePath().string() +
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
    } const rows[] = {{"ENG", "GER\ts\t1\tx\nENG\ts\t1\ty\n", true, "ENG", {}, "ENG"},
                      {"FRA", "GER\ts\t1\tx\nENG\ts\t1\ty\n", true, "GER", {}, "GER"},
                      {"", "GER\ts\t1\tx\n", true, "GER", {}, ""},
                      {"ENGL", "GER\ts\t1\tx\n", true, "GER", {}, "ENGL"},
                      {"ENG", "GER\ts\t1\tx\nENG\ts\n", false, "ENG", {problem + "ENG" + tryAgain}, "GER"},
                      {"GER", "", false, "GER", {problem + "GER" + giveUp}, "GER"}};
    for (const auto& row : rows) {
        EXPECT_EQ(Load(row.Stored, row.Lines), row.Loads) << row.Stored;
        EXPECT_EQ(language.LanguageCode(), row.Code);
        EXPECT_EQ(TakeBoxes(), row.Shown);
        EXPECT_EQ(settings.Get(Keys::Language), row.StoredAfter);
    }
}

TEST_F(LanguageTest, AnInstalledProgramFindsItsTextsInTheDataFolder) {
    settings.SetReg("Language", "GER");
    const auto beside = language.LanguageFilePath();
    EXPECT_EQ(beside, programFolder / "Korvalin.lng") << "where an update would put it";
    std::filesystem::create_directories(folder / "share/korvalin");
    folder.Write("share/korvalin/Korvalin.lng", "h\nGER\ts\t1\tinstalled\n");
    EXPECT_TRUE(language.InitProgramTexts());
    EXPECT_EQ(language.Lng("s", 1), "installed");
    folder.Write("program/Korvalin.lng", "h\nGER\ts\t1\tupdated\n");
    EXPECT_TRUE(language.InitProgramTexts());
    EXPECT_EQ(language.Lng("s", 1), "updated");
    EXPECT_EQ(language.LanguageFilePath(), beside);
}

TEST_F(LanguageTest, TellsAboutAFileThatCannotBeRead) {
    std::filesystem::create_symlink("/proc/self/mem",
                                    language.LanguageFilePath()); // gives no byte, also to root
    EXPECT_FALSE(language.LoadLanguageTexts());
    EXPECT_EQ(TakeBoxes(), Lines{"LoadLanguageTexts, 0, The language file cannot be read."});
}

TEST_F(LanguageTest, AsksForTheLanguageAtTheFirstStart) {
    WriteTexts("GER\ts\t1\tx\nENG\ts\t1\ty\nFRA\ts\t1\tz\nLNG\tlngDefinition\tGER\tGER - Deutsch\n"
               "LNG\tlngDefinition\tFRA\tFRA - Français");
    shell.Language = "fr";
    language.PlugAskLanguage([&] {
        const auto choices = language.FillLanguageChoices();
        EXPECT_EQ(choices.Names, (Lines{"GER - Deutsch", "ENG - language", "FRA - Français"}));
        EXPECT_EQ(choices.Selected, 1U) << "English for whoever speaks no German";
        EXPECT_FALSE(language.ChooseLanguage("XXX - unknown"));
        EXPECT_TRUE(language.ChooseLanguage(choices.Names[2]));
    });
    EXPECT_TRUE(language.InitProgramTexts());
    EXPECT_EQ(language.Lng("s", 1) + settings.Get(Keys::Language), "zFRA");
    const std::string file = folder.Read("program/Korvalin.lng");
    EXPECT_TRUE(file.ends_with("Français\r\nLNG\tlngDefinition\tENG\tENG - language\r\n")) << file;
}

TEST(ParseLngNo, ReadsTheMark) {
    const std::pair<const char*, int> rows[] = {
        {"#LngNo:5", 5},  {"x #LngNo: 12.9 y", 12}, {"#LngNo:-", -1},
        {"#LngNo:-7", 7}, {"#LngNo:0", 0},          {"#LngNo:abc", 0},
        {"", 0},          {"#LngNo:-x", 0},         {"#LngNo:99999999999", INT_MAX}};
    for (const auto& [tag, expected] : rows)
        EXPECT_EQ(Language::ParseLngNo(tag), expected) << tag;
}

} // namespace
