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
        fs::create_directories(folder / "log");
        settings.SetReg("DataPath", (folder / "log").string());
    }

    bool Main(ProgramVersion version = {2, 1, 7}) {
        if (!Download.empty()) http.Answers["https://maker.example/Korvalin.lng"].Body = Download;
        Startup startup({.Settings = settings,
                         .Language = language,
                         .Errors = errors,
                         .MessageBoxes = boxes,
                         .Shell = shell,
                         .Clock = clock,
                         .InstanceLock = lock,
                         .DataFolder = dataFolder,
                         .UpdateInstallation = update,
                         .Components = components,
                         .UpdateSite = site,
                         .LineState = lines},
                        version);
        startup.Plug({.LoadUserVar = LoadUserVar});
        lines.LineCount = 1;
        return startup.Main();
    }

    static constexpr const char* goodTexts = "GER\tmodAllgemein\t1\tWrong system\n";
    std::string Download;
    int loads = 0;
    std::function<void()> LoadUserVar = [this] {
        EXPECT_EQ(lines.LineCount, 0U) << "the line table is there";
        ++loads;
    };
    LineState lines;
    WebFetch fetch{{.Http = http,
                    .Settings = settings,
                    .Errors = errors,
                    .Files = files,
                    .Events = events,
                    .Clock = clock,
                    .Language = language,
                    .DataFolder = dataFolder,
                    .Version = {2, 1, 7}}};
    UpdateSite site{{.Site = "https://maker.example/", .VersionHistoryPage = "", .PublicKey = ""},
                    {.WebFetch = fetch,
                     .Signatures = signatures,
                     .Settings = settings,
                     .Errors = errors,
                     .Clock = clock,
                     .Executable = programFolder / "Korvalin.exe",
                     .Version = {2, 1, 7}}};
    UpdateInstallation update{{.Settings = settings,
                               .Language = language,
                               .Errors = errors,
                               .MessageBoxes = boxes,
                               .Files = files,
                               .Shell = shell,
                               .Events = events,
                               .Clock = clock,
                               .InstanceLock = lock,
                               .UpdateSite = site},
                              programFolder};
    Components components{{.Settings = settings,
                           .Language = language,
                           .MessageBoxes = boxes,
                           .Shell = shell,
                           .Events = events,
                           .DataFolder = dataFolder,
                           .UpdateSite = site},
                          "page"};
};

TEST_F(StartupTest, PreparesTheMainWindow) {
    EXPECT_TRUE(Main());
    EXPECT_EQ(loads, 1);
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
    const fs::path newer = folder.Write("program/Korvalin_new.exe", std::string(200'000, 'x'));
    fs::permissions(newer, fs::perms::owner_all);
    EXPECT_FALSE(Main());
    EXPECT_EQ(shell.Started.size(), 1U);
    EXPECT_EQ(loads, 0);
}

TEST_F(StartupTest, AnErrorInOneStepEndsOnlyThatStep) {
    const fs::path backup = folder.Write("log/Korvalin_Stats.db_old", "records");
    fs::last_write_time(backup, fs::file_time_type::clock::now() - std::chrono::years(50));
    settings.SetReg("DeleteStatistics", 1);
    LoadUserVar = [] { throw NumberedError(7, "settings"); };
    EXPECT_TRUE(Main());
    EXPECT_NE(boxes.Take().Text.find("Main"), std::string::npos);
    EXPECT_FALSE(fs::exists(backup)) << "the steps behind it are done";
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
                      {true, "bad", {Yes}, {missing, corrupted}, 1, false}};
    for (const auto& row : rows) {
        fs::remove(file);
        if (row.Exists) folder.Write("program/Korvalin.lng", "broken");
        Download = row.Download == "good" ? WholeTexts() : row.Download;
        boxes.Answers = row.Answers;
        EXPECT_EQ(Main(), row.Starts);
        Lines shown = TakeBoxes();
        for (std::string& text : shown)
            text.resize(text.starts_with(corrupted) ? corrupted.size() : missing.size());
        EXPECT_EQ(shown, row.Shown);
        EXPECT_EQ(http.TakeAddresses(), Lines(row.Downloads, "https://maker.example/Korvalin.lng"));
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
