#include "fakes/CoreFixture.h"
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
            "GER\tmodAllgemein\t25\tis new.\nGER\tmodAllgemein\t27\t?\nGER\tmodAllgemein\t45\tWait\n");
        settings.SetReg("Language", "GER");
    }

    fs::path Put(const char* name, std::size_t length, hours age = hours(0)) {
        const fs::path file = folder.Write(std::string("program/") + name, std::string(length, 'x'));
        fs::last_write_time(file, now_ - age);
        return file;
    }
    bool Run(const char* executable) {
        shell.Executable = programFolder / executable;
        return UpdateInstallation({.Settings = settings,
                                   .Language = language,
                                   .Errors = errors,
                                   .MessageBoxes = boxes,
                                   .Files = files,
                                   .Shell = shell,
                                   .Events = events,
                                   .Clock = clock,
                                   .InstanceLock = lock},
                                  programFolder)
            .Run();
    }

    const fs::file_time_type now_ = fs::file_time_type::clock::now();
    const fs::path old_ = programFolder / "Korvalin.exe";
    const fs::path new_ = programFolder / "Korvalin_new.exe";
};

TEST_F(UpdateInstallationTest, HandsOverToANewerProgramOnly) {
    struct {
        std::size_t NewLength;
        int NewAge, CurrentAge;
        bool Starts, Started;
    } const rows[] = {{200'000, 1, 2, true, true},
                      {200'000, 1, 2, false, false}, // cannot be started
                      {199'999, 1, 2, true, false},
                      {200'000, 1, 1, true, false}};
    EXPECT_FALSE(Run("Korvalin.exe")) << "there is none";
    for (const auto& row : rows) {
        Put("Korvalin.exe", 10, hours(row.CurrentAge));
        fs::permissions(old_, fs::perms::owner_all);
        Put("Korvalin_new.exe", row.NewLength, hours(row.NewAge));
        shell.Starts = row.Starts;
        EXPECT_EQ(Run("Korvalin.exe"), row.Started);
        EXPECT_EQ(fs::exists(new_), row.Started) << "what is of no use is removed";
        if (row.Started) {
            EXPECT_NE(fs::status(new_).permissions() & fs::perms::owner_exec, fs::perms::none);
        }
        fs::remove(new_);
    }
    EXPECT_EQ(shell.Started, std::vector<fs::path>{new_});
}

TEST_F(UpdateInstallationTest, InstallsItself) {
    Put("Korvalin.exe", 10);
    Put("KORVALIN_NEW.EXE", 200'000, hours(-5)); // a clock that was set back since
    const double start = clock.AwakeSeconds();
    lock.OldProgramRuns = [&] {
        EXPECT_EQ(fs::file_size(old_), 10U) << "its file could be deleted while it runs";
        return clock.AwakeSeconds() < start + 12;
    };
    folder.Write("program/KorvalinLng_new.lng", "new texts");
    EXPECT_TRUE(Run("KORVALIN_NEW.EXE"));
    EXPECT_EQ(boxes.Waiting, Lines{"Wait"});
    EXPECT_FALSE(boxes.WaitingOpen);
    EXPECT_GE(clock.AwakeSeconds(), start + 12);
    lock.OldProgramRuns = [] { return false; };
    EXPECT_EQ(shell.Started, std::vector<fs::path>{old_});
    EXPECT_EQ(fs::file_size(old_), 200'000U);
    EXPECT_EQ(folder.Read("program/Korvalin.lng"), "new texts");
    EXPECT_FALSE(fs::exists(programFolder / "KorvalinLng_new.lng"));
    EXPECT_NEAR(settings.Get(Keys::UpdateLast), clock.Now(), OneSecond);
    folder.Write("program/KorvalinLng_new.txt", "of the other name");
    EXPECT_TRUE(Run("KORVALIN_NEW.EXE"));
    EXPECT_EQ(folder.Read("program/Korvalin.lng"), "of the other name");
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
    folder.Write("program/KorvalinLng_new.lng", "new texts");
    Put("Korvalin.exe", 10);
    files.CopyFails = true;
    EXPECT_FALSE(Run("Korvalin_new.exe"));
    EXPECT_NE(boxes.Take().Text.find("Korvalin"), std::string::npos);
    EXPECT_TRUE(shell.Started.empty());
    EXPECT_EQ(fs::file_size(old_), 10U) << "the old program is still there";
    EXPECT_EQ(settings.Get(Keys::UpdateLast), 0);
}

} // namespace
