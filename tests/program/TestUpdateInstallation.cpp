#include "fakes/CoreFixture.h"
#include "inet/UpdateSite.h"
#include "inet/WebFetch.h"
#include "program/UpdateInstallation.h"

using namespace korvalin;

namespace {

namespace fs = std::filesystem;
using std::chrono::hours;

class UpdateInstallationTest : public CoreFixture {
  protected:
    UpdateInstallationTest() {
        WriteTexts(
            "GER\tmodAllgemein\t18\tStill there:\nGER\tmodAllgemein\t19\t!\nGER\tmodAllgemein\t23\tbut\n"
            "GER\tmodInternet\t36\tSet aside: \nGER\tmodAllgemein\t25\tis "
            "new.\nGER\tmodAllgemein\t27\t?\nGER\tmodAllgemein\t45\tWait\n");
        settings.SetReg("Language", "GER");
    }

    fs::path Put(const char* name, std::size_t length, hours age = hours(0)) {
        const fs::path file = folder.Write(std::string("program/") + name, std::string(length, 'x'));
        fs::last_write_time(file, now_ - age);
        return file;
    }
    void PutRunnable(std::size_t length = 200'000) {
        Put("Korvalin_new.exe", length);
        fs::permissions(new_, fs::perms::owner_all);
    }
    bool Run(const char* executable) {
        shell.Executable = programFolder / executable;
        UpdateSite site({.Site = "https://maker.example/", .VersionHistoryPage = "", .PublicKey = key_},
                        {.WebFetch = fetch_,
                         .Signatures = signatures,
                         .Settings = settings,
                         .Errors = errors,
                         .Clock = clock,
                         .Executable = programFolder / "Korvalin.exe",
                         .Version = {2, 3, 12}});
        return UpdateInstallation({.Settings = settings,
                                   .Language = language,
                                   .Errors = errors,
                                   .MessageBoxes = boxes,
                                   .Files = files,
                                   .Shell = shell,
                                   .Events = events,
                                   .Clock = clock,
                                   .InstanceLock = lock,
                                   .UpdateSite = site},
                                  programFolder)
            .Run();
    }

    WebFetch fetch_{{.Http = http,
                     .Settings = settings,
                     .Errors = errors,
                     .Files = files,
                     .Events = events,
                     .Clock = clock,
                     .Language = language,
                     .DataFolder = dataFolder,
                     .Version = {2, 3, 12}}};
    std::string key_; ///< the maker's
    const fs::file_time_type now_ = fs::file_time_type::clock::now();
    const fs::path old_ = programFolder / "Korvalin.exe";
    const fs::path new_ = programFolder / "Korvalin_new.exe";
};

TEST_F(UpdateInstallationTest, HandsOverToANewerProgramOnly) {
    struct {
        std::size_t NewLength;
        int NewAge, CurrentAge;
        bool Started;
    } const rows[] = {{200'000, 1, 2, true}, {199'999, 1, 2, false}, {200'000, 1, 1, false}};
    EXPECT_FALSE(Run("Korvalin.exe")) << "there is none";
    for (const auto& row : rows) {
        Put("Korvalin.exe", 10, hours(row.CurrentAge));
        fs::permissions(old_, fs::perms::owner_all);
        Put("Korvalin_new.exe", row.NewLength, hours(row.NewAge));
        fs::permissions(new_, fs::perms::owner_all);
        EXPECT_EQ(Run("Korvalin.exe"), row.Started);
        EXPECT_EQ(fs::exists(new_), row.Started) << "what is of no use is removed";
        fs::remove(new_);
    }
    EXPECT_EQ(shell.Started, std::vector<fs::path>{new_});
}

TEST_F(UpdateInstallationTest, RunsNothingThatNoUpdateHasBrought) {
    Put("Korvalin.exe", 10, hours(1));
    PutRunnable();
    fs::permissions(new_, fs::perms::owner_exec, fs::perm_options::remove);
    EXPECT_FALSE(Run("Korvalin.exe")) << "as a browser puts it there";
    PutRunnable();
    files.Foreign = true;
    EXPECT_FALSE(Run("Korvalin.exe"));
    files.Foreign = false;
    fs::rename(new_, programFolder / "other");
    fs::create_symlink(programFolder / "other", new_);
    EXPECT_FALSE(Run("Korvalin.exe"));
    fs::remove(new_);
    EXPECT_TRUE(boxes.Shown.empty());

    key_ = "key";
    signatures.Valid = std::string(64, 's');
    const auto manifest = [this](const char* version, const char* expires, const std::string& signedContent) {
        std::string signature = "signature ";
        for (int i = 0; i < 64; ++i)
            signature += "73";
        folder.Write("program/Korvalin_new.manifest",
                     signature + "\nKorvalin update 1\nversion " + version + "\nexpires " + expires +
                         "\nfile 200000 " + FakeSignatures::Sum(signedContent) + " setup.exe\n");
    };
    const std::string content(200'000, 'x');
    PutRunnable();
    EXPECT_FALSE(Run("Korvalin.exe")) << "nothing tells that the maker has signed it";
    manifest("2.4.1", "2024-04-01", "another program");
    EXPECT_FALSE(Run("Korvalin.exe"));
    manifest("2.3.11", "2024-04-01", content);
    EXPECT_FALSE(Run("Korvalin.exe"));
    manifest("2.4.1", "2024-03-01", content);
    EXPECT_FALSE(Run("Korvalin.exe"));
    EXPECT_TRUE(shell.Started.empty());
    manifest("2.4.1", "2024-04-01", content);
    EXPECT_TRUE(Run("Korvalin.exe"));
}

TEST_F(UpdateInstallationTest, SetsAsideWhatDoesNotRun) {
    Put("Korvalin.exe", 10, hours(1));
    const Lines told = {"Set aside: " + (programFolder / "Korvalin_failed.exe").string()};
    for (bool* fault : {&shell.Starts, &lock.NewProgramRuns}) {
        *fault = false;
        PutRunnable();
        EXPECT_FALSE(Run("Korvalin.exe"));
        EXPECT_EQ(TakeBoxes(), told);
        EXPECT_FALSE(fs::exists(new_));
        *fault = true;
    }
    PutRunnable(); // says that it runs, but does not get as far as installing itself
    EXPECT_TRUE(Run("Korvalin.exe"));
    EXPECT_TRUE(Run("Korvalin.exe"));
    EXPECT_FALSE(Run("Korvalin.exe"));
    EXPECT_EQ(TakeBoxes(), told);
}

TEST_F(UpdateInstallationTest, KeepsAGoodLanguageFile) {
    const std::string old = folder.Read("program/Korvalin.lng");
    Put("Korvalin_new.exe", 300);
    folder.Write("program/KorvalinLng_new.lng", "<h1>Welcome</h1>");
    EXPECT_TRUE(Run("Korvalin_new.exe"));
    EXPECT_EQ(folder.Read("program/Korvalin.lng"), old);
    EXPECT_FALSE(fs::exists(programFolder / "KorvalinLng_new.lng"));
    EXPECT_EQ(fs::file_size(old_), 300U);
}

TEST_F(UpdateInstallationTest, InstallsItself) {
    Put("Korvalin.exe", 10);
    Put("KORVALIN_NEW.EXE", 200'000, hours(-5)); // a clock that was set back since
    const double start = clock.AwakeSeconds();
    lock.OldProgramRuns = [&] {
        EXPECT_EQ(fs::file_size(old_), 10U) << "its file could be deleted while it runs";
        return clock.AwakeSeconds() < start + 12;
    };
    folder.Write("program/KorvalinLng_new.lng", WholeTexts("of an update"));
    EXPECT_TRUE(Run("KORVALIN_NEW.EXE"));
    EXPECT_EQ(boxes.Waiting, Lines{"Wait"});
    EXPECT_FALSE(boxes.WaitingOpen);
    EXPECT_GE(clock.AwakeSeconds(), start + 12);
    lock.OldProgramRuns = [] { return false; };
    EXPECT_EQ(shell.Started, std::vector<fs::path>{old_});
    EXPECT_EQ(fs::file_size(old_), 200'000U);
    EXPECT_EQ(folder.Read("program/Korvalin.lng"), WholeTexts("of an update"));
    EXPECT_FALSE(fs::exists(programFolder / "KorvalinLng_new.lng"));
    EXPECT_NEAR(settings.Get(Keys::UpdateLast), clock.Now(), OneSecond);
    folder.Write("program/KorvalinLng_new.txt", WholeTexts("of the other name"));
    EXPECT_TRUE(Run("KORVALIN_NEW.EXE"));
    EXPECT_EQ(folder.Read("program/Korvalin.lng"), WholeTexts("of the other name"));
    // The installed program must not hand over again.
    fs::rename(programFolder / "KORVALIN_NEW.EXE", new_);
    EXPECT_FALSE(Run("Korvalin.exe"));
}

TEST_F(UpdateInstallationTest, EndsWhileTheOldProgramIsHeld) {
    const std::string held = "Still there: " + old_.string();
    const Lines asked = {held + "!", held + " but " + new_.string() + " is new."};
    const std::pair<double, Lines> rows[] = {{1e9, asked}, {40, {asked[0]}}, {20, {}}}; // released after
    for (const auto& [released, shown] : rows) {
        Put("Korvalin_new.exe", 300);
        fs::remove_all(old_);
        fs::create_directories(old_); // a folder of the file's name cannot be deleted
        const double start = clock.AwakeSeconds();
        events.OnProcessPending = [&] {
            if (clock.AwakeSeconds() > start + released) fs::remove_all(old_);
        };
        shell.Started.clear();
        EXPECT_TRUE(Run("Korvalin_new.exe"));
        EXPECT_EQ(TakeBoxes(), shown);
        EXPECT_EQ(shell.Started.size(), released < 1e9 ? 1U : 0U);
    }
}

TEST_F(UpdateInstallationTest, GoesOnItselfWhenTheDiskIsFull) {
    Put("Korvalin_new.exe", 300);
    folder.Write("program/KorvalinLng_new.lng", WholeTexts());
    Put("Korvalin.exe", 10);
    files.CopyFails = true;
    EXPECT_FALSE(Run("Korvalin_new.exe"));
    EXPECT_NE(boxes.Take().Text.find("Korvalin"), std::string::npos);
    EXPECT_TRUE(shell.Started.empty());
    EXPECT_EQ(fs::file_size(old_), 10U) << "the old program is still there";
    EXPECT_EQ(settings.Get(Keys::UpdateLast), 0);
}

} // namespace
