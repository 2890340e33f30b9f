#include "data/DataFolder.h"
#include "fakes/CoreFixture.h"
#include "program/Startup.h"
#include "program/UpdateInstallation.h"

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

class StartupTest : public CoreFixture {
  protected:
    StartupTest() {
        WriteTexts(goodTexts);
        settings.SetReg("Language", "GER");
        settings.SetReg("DataPath", (folder / "log").string());
    }

    bool Main(ProgramVersion version = {2, 1, 7}) {
        const auto download = [this](const std::string& name, const fs::path& target) {
            Downloads.push_back(name);
            if (Download.empty()) return false;
            std::ofstream(target) << Download;
            return true;
        };
        DataFolder data(settings, language, errors, boxes, files, shell, clock, programFolder);
        UpdateInstallation update(settings, language, errors, boxes, files, shell, events, clock, lock,
                                  programFolder);
        Components components(settings, language, boxes, shell, events, data, download, "page");
        return Startup({settings, language, errors, boxes, shell, clock, lock, data, update, components,
                        download, CreateLineTable, [this] { Calls.push_back("settings"); }},
                       version)
            .Main();
    }

    static constexpr const char* goodTexts = "GER\tmodAllgemein\t1\tWrong system\n";
    std::string Download;
    Lines Downloads, Calls;
    std::function<void()> CreateLineTable = [this] { Calls.push_back("lines"); };
};

TEST_F(StartupTest, PreparesTheMainWindow) {
    EXPECT_TRUE(Main());
    EXPECT_EQ(Calls, (Lines{"lines", "settings"}));
    EXPECT_EQ(FormatDateIso(settings.Get(Keys::FirstRunDate)), "2024-03-15 12:00:00");
    clock.Advance(100);
    EXPECT_TRUE(Main());
    EXPECT_EQ(FormatDateIso(settings.Get(Keys::FirstRunDate)), "2024-03-15 12:00:00");
}

TEST_F(StartupTest, RefusesASecondInstanceSilently) {
    lock.Running = true;
    const int writes = registry.Writes;
    EXPECT_FALSE(Main());
    EXPECT_EQ(registry.Writes, writes);
    settings.SetReg("MultiInstance", true);
    EXPECT_TRUE(Main());
}

TEST_F(StartupTest, EndsForANewerProgramAndWhereItCannotRun) {
    shell.Supported = false;
    EXPECT_FALSE(Main());
    EXPECT_EQ(TakeBoxes(), Lines{"Wrong system"});
    folder.Write("program/Korvalin_new.exe", std::string(200'000, 'x'));
    EXPECT_FALSE(Main());
    EXPECT_EQ(shell.Started.size(), 1U);
    EXPECT_TRUE(Calls.empty());
}

TEST_F(StartupTest, AnErrorInOneStepEndsOnlyThatStep) {
    CreateLineTable = [] { throw NumberedError(7, "lines"); };
    EXPECT_TRUE(Main());
    EXPECT_NE(boxes.Take().Text.find("Main"), std::string::npos);
    EXPECT_EQ(Calls, Lines{"settings"});
}

TEST_F(StartupTest, GetsALanguageFile) {
    using enum MessageAnswer;
    const fs::path file = programFolder / "Korvalin.lng";
    const std::string missing = "Language file " + file.string();
    const std::string corrupted = "Language file corrupted";
    struct {
        bool Exists;
        std::string Download;
        std::deque<MessageAnswer> Answers;
        Lines Shown; // how the messages begin
        std::size_t Downloads;
        bool Starts;
    } const rows[] = {{false, "good", {Yes}, {missing}, 1, true},
                      {false, "good", {No, No}, {missing, missing, corrupted}, 0, false},
                      {false, "good", {No, Yes}, {missing, missing, corrupted}, 1, true},
                      {true, "good", {Yes}, {missing, corrupted}, 1, true},
                      {true, "bad", {Yes}, {missing, corrupted, missing}, 1, false}};
    for (const auto& row : rows) {
        fs::remove(file);
        if (row.Exists) folder.Write("program/Korvalin.lng", "broken");
        Download = row.Download == "good" ? "h\n" + std::string(goodTexts) : row.Download;
        Downloads.clear();
        boxes.Answers = row.Answers;
        EXPECT_EQ(Main(), row.Starts);
        Lines shown = TakeBoxes();
        for (std::string& text : shown)
            text.resize(text.starts_with(corrupted) ? corrupted.size() : missing.size());
        EXPECT_EQ(shown, row.Shown);
        EXPECT_EQ(Downloads, Lines(row.Downloads, "Korvalin.lng"));
    }
}

TEST_F(StartupTest, NotesANewVersion) {
    struct {
        const char* Stored;
        ProgramVersion Version;
        const char* Text;
        bool StaysUnwanted, ChecksSoon;
    } const rows[] = {{"v2.1.7", {2, 1, 7}, "v2.1.7", true, false},
                      {"V2.1.5", {2, 1, 7}, "V2.1.7", true, true},
                      {"V2.0.5", {2, 1, 7}, "V2.1.7", false, true},
                      {"V2.1.12", {2, 1, 129}, "V2.1.12", true, false}};
    for (const auto& row : rows) {
        settings.SetReg("PrgVersion", row.Stored);
        settings.SetReg("msinetNotWanted", true);
        settings.SetReg("UpdateCheckLast", clock.Now());
        EXPECT_TRUE(Main(row.Version));
        EXPECT_EQ(settings.Get(Keys::PrgVersion), row.Text);
        EXPECT_EQ(settings.Get(Keys::msinetNotWanted), row.StaysUnwanted) << row.Stored;
        EXPECT_EQ(settings.Get(Keys::UpdateCheckLast),
                  row.ChecksSoon ? DateSerial(2024, 1, 15) : clock.Now());
    }
}

} // namespace
