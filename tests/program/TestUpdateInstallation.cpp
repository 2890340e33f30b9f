#include "inet/UpdateFixture.h"

using namespace korvalin;

namespace {

namespace fs = std::filesystem;
using std::chrono::hours;

class UpdateInstallationTest : public UpdateFixture {
  protected:
    UpdateInstallationTest() {
        WriteTexts("GER\tmodAllgemein\t18\tStill there:\nGER\tmodAllgemein\t19\t!\n"
                   "GER\tmodAllgemein\t23\tbut\nGER\tmodInternet\t36\tSet aside: "
                   "\nGER\tmodInternet\t167\tForeign: \n"
                   "GER\tmodAllgemein\t25\tis new.\nGER\tmodAllgemein\t27\t?\nGER\tmodAllgemein\t45\tWait\n");
        settings.SetReg("Language", "GER");
    }

    void Put(const char* name, std::size_t length, hours age = hours(0)) {
        const fs::path file = folder.Write(std::string("program/") + name, std::string(length, 'x'));
        fs::permissions(file, fs::perms::owner_all);
        fs::last_write_time(file, now_ - age);
    }
    bool Run(const char* executable) {
        shell.Executable = programFolder / executable;
        program = std::make_unique<Program>(AllPorts(), locale);
        return program->updateInstallation.Run();
    }

    const fs::file_time_type now_ = fs::file_time_type::clock::now();
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
        Put("Korvalin_new.exe", row.NewLength, hours(row.NewAge));
        EXPECT_EQ(Run("Korvalin.exe"), row.Started);
        EXPECT_EQ(fs::exists(newProgram), row.Started) << "what is of no use is removed";
        fs::remove(newProgram);
    }
    EXPECT_EQ(shell.Started, std::vector<fs::path>{newProgram});
}

TEST_F(UpdateInstallationTest, SetsAsideWhatNoUpdateHasBrought) {
    Put("Korvalin.exe", 10, hours(1));
    Put("Korvalin_new.exe", 200'000);
    fs::permissions(newProgram, fs::perms::owner_exec, fs::perm_options::remove);
    EXPECT_FALSE(Run("Korvalin.exe")) << "as a browser puts it there";
    Put("Korvalin_new.exe", 200'000);
    files.Foreign = true;
    EXPECT_FALSE(Run("Korvalin.exe"));
    files.Foreign = false;
    for (const fs::path& link : {newProgram, programFolder / NewManifestFileName}) {
        Put("Korvalin_new.exe", 200'000);
        fs::rename(newProgram, programFolder / "other");
        if (link != newProgram) Put("Korvalin_new.exe", 200'000);
        fs::create_symlink(programFolder / "other", link);
        EXPECT_FALSE(Run("Korvalin.exe")) << link;
    }
    EXPECT_EQ(NewFiles(), Lines{});
    EXPECT_EQ(TakeBoxes(), Lines(4, "Foreign: " + (programFolder / "Korvalin_failed.exe").string()));
}

TEST_F(UpdateInstallationTest, TakesAllOfASignedUpdateOrNothing) {
    setenv("KORVALIN_UPDATE_KEY", "6b6579", 1);
    signatures.Valid = std::string(64, 's');
    const std::string content(200'000, 'x');
    const std::string texts = WholeTexts("of an update");
    const auto file = [](const std::string& name, const std::string& text) {
        return fmt::format("file {} {} {}\n", text.size(), FakeSignatures::Sum(text), name);
    };
    const std::string both = file("setup.exe", content) + file("Korvalin.lng", texts);
    const char* const later = "9.4.1 setup.exe";
    struct {
        const char *What, *Program;
        std::string Files, Texts;
        bool Runs;
    } const rows[] = {
        {"another program", later, file("setup.exe", "x") + file("Korvalin.lng", texts), texts, false},
        {"a file that is no program of a version", "9.4.1 other.exe", both, texts, false},
        {"an older version", "0.3.11 setup.exe", both, texts, false},
        {"other texts", later, both, WholeTexts("of somebody"), false},
        {"no texts", later, both, "", false},
        {"longer than any manifest", later, both + std::string(65'536, '\n'), texts, false},
        {"all of it, expired since", later, both, texts, true}};
    for (const auto& row : rows) {
        for (const bool asNew : {false, true}) {
            Put("Korvalin.exe", 10, hours(1));
            Put("Korvalin_new.exe", content.size());
            folder.Write("program/KorvalinLng_new.lng", row.Texts);
            if (row.Texts.empty()) fs::remove(programFolder / NewLanguageFileName);
            folder.Write("program/Korvalin_new.manifest",
                         fmt::format("signature {0}\nKorvalin update 1\nexpires 2024-03-01\nautomatic {1}\n"
                                     "on-demand {1}\n{2}",
                                     ReplaceAll(std::string(64, '*'), "*", "73"), row.Program, row.Files));
            EXPECT_EQ(Run(asNew ? "Korvalin_new.exe" : "Korvalin.exe"), row.Runs) << row.What;
            EXPECT_EQ(std::exchange(shell.Started, {}).size(), row.Runs ? 1U : 0U) << row.What;
            EXPECT_EQ(fs::file_size(running), row.Runs && asNew ? content.size() : 10U) << row.What;
            EXPECT_EQ(fs::exists(programFolder / NewManifestFileName), row.Runs != asNew) << row.What;
            TakeBoxes();
        }
    }
}

TEST_F(UpdateInstallationTest, SetsAsideWhatDoesNotRun) {
    Put("Korvalin.exe", 10, hours(1));
    const Lines told = {"Set aside: " + (programFolder / "Korvalin_failed.exe").string()};
    for (bool* fault : {&shell.Starts, &lock.NewProgramIsReady}) {
        *fault = false;
        Put("Korvalin_new.exe", 200'000);
        EXPECT_FALSE(Run("Korvalin.exe"));
        EXPECT_EQ(TakeBoxes(), told);
        EXPECT_FALSE(fs::exists(newProgram));
        *fault = true;
    }
    Put("Korvalin_new.exe", 200'000); // says that it is ready, but does not get as far as installing itself
    EXPECT_TRUE(Run("Korvalin.exe"));
    EXPECT_TRUE(Run("Korvalin.exe"));
    EXPECT_FALSE(Run("Korvalin.exe"));
    EXPECT_EQ(TakeBoxes(), told);
}

TEST_F(UpdateInstallationTest, LeavesTheOldProgramAloneUnlessItCanTakeItsPlace) {
    const std::string old = folder.Read("program/Korvalin.lng");
    for (const bool oldRuns : {false, true}) {
        lock.OldProgramRuns = [&] { return oldRuns; };
        Put("Korvalin.exe", 10);
        Put("Korvalin_new.exe", 300);
        folder.Write("program/KorvalinLng_new.lng", "<h1>Welcome</h1>");
        EXPECT_EQ(Run("Korvalin_new.exe"), oldRuns) << "goes on as the program where there is no other";
        folder.Write("program/KorvalinLng_new.lng", WholeTexts());
        files.CopyFails = true; // a full disk
        EXPECT_EQ(Run("Korvalin_new.exe"), oldRuns);
        EXPECT_NE(boxes.Take().Text.find("Korvalin"), std::string::npos);
        files.CopyFails = false;
        EXPECT_FALSE(lock.SaidReady);
        EXPECT_TRUE(shell.Started.empty());
        EXPECT_EQ(folder.Read("program/Korvalin.lng"), old);
        EXPECT_EQ(fs::file_size(running), 10U) << "the old program is still there";
        EXPECT_EQ(settings.Get(Keys::UpdateLast), 0);
    }
    lock.OldProgramRuns = [&] { return fs::remove(newProgram); }; // which has taken the update back
    EXPECT_TRUE(Run("Korvalin_new.exe"));
    EXPECT_TRUE(lock.SaidReady);
    EXPECT_EQ(fs::file_size(running), 10U);
}

TEST_F(UpdateInstallationTest, InstallsItself) {
    Put("Korvalin.exe", 10);
    Put("KORVALIN_NEW.EXE", 200'000, hours(-5)); // a clock that was set back since
    const double start = clock.AwakeSeconds();
    lock.OldProgramRuns = [&] {
        EXPECT_TRUE(lock.SaidReady) << "waits for the one that waits for this";
        EXPECT_EQ(fs::file_size(running), 10U) << "its file could be deleted while it runs";
        return clock.AwakeSeconds() < start + 12;
    };
    folder.Write("program/KorvalinLng_new.lng", WholeTexts("of an update"));
    EXPECT_TRUE(Run("KORVALIN_NEW.EXE"));
    EXPECT_EQ(boxes.Waiting, Lines{"Wait"});
    EXPECT_FALSE(boxes.WaitingOpen);
    EXPECT_GE(clock.AwakeSeconds(), start + 12);
    lock.OldProgramRuns = [] { return false; };
    EXPECT_EQ(shell.Started, std::vector<fs::path>{running});
    EXPECT_EQ(fs::file_size(running), 200'000U);
    EXPECT_EQ(folder.Read("program/Korvalin.lng"), WholeTexts("of an update"));
    EXPECT_FALSE(fs::exists(programFolder / "KorvalinLng_new.lng"));
    EXPECT_NEAR(settings.Get(Keys::UpdateLast), clock.Now(), OneSecond);
    folder.Write("program/KorvalinLng_new.txt", WholeTexts("of the other name"));
    EXPECT_TRUE(Run("KORVALIN_NEW.EXE"));
    EXPECT_EQ(folder.Read("program/Korvalin.lng"), WholeTexts("of the other name"));
    // The installed program must not hand over again.
    fs::rename(programFolder / "KORVALIN_NEW.EXE", newProgram);
    EXPECT_FALSE(Run("Korvalin.exe"));
}

TEST_F(UpdateInstallationTest, EndsWhileTheOldProgramIsHeld) {
    const std::string held = "Still there: " + running.string();
    const Lines asked = {held + "!", held + " but " + newProgram.string() + " is new."};
    const std::pair<double, Lines> rows[] = {{1e9, asked}, {40, {asked[0]}}, {20, {}}}; // released after
    for (const auto& [released, shown] : rows) {
        Put("Korvalin_new.exe", 300);
        fs::remove_all(running);
        fs::create_directories(running); // a folder of the file's name cannot be deleted
        const double start = clock.AwakeSeconds();
        events.OnProcessPending = [&] {
            if (clock.AwakeSeconds() > start + released) fs::remove_all(running);
        };
        shell.Started.clear();
        EXPECT_TRUE(Run("Korvalin_new.exe"));
        EXPECT_EQ(TakeBoxes(), shown);
        EXPECT_EQ(shell.Started.size(), released < 1e9 ? 1U : 0U);
    }
}

} // namespace
