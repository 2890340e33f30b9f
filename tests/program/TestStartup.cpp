#include "inet/UpdateFixture.h"

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

class StartupTest : public UpdateFixture {
  protected:
    StartupTest() {
        WriteTexts("GER\tmodAllgemein\t1\tWrong system\n");
        settings.SetReg("Language", "GER");
        program = std::make_unique<Program>(AllPorts(), locale);
    }
};

TEST_F(StartupTest, PreparesTheMainWindow) {
    program->lines.LineCount = 1;
    EXPECT_TRUE(program->Main());
    EXPECT_EQ(program->lines.LineCount, 0U);
    EXPECT_EQ(program->lines.ProgramStart, clock.Now()) << "the records are loaded";
    EXPECT_EQ(FormatDateIso(settings.Get(Keys::FirstRunDate)), "2024-03-15 12:00:00");
    clock.Advance(100);
    EXPECT_TRUE(program->Main());
    EXPECT_EQ(FormatDateIso(settings.Get(Keys::FirstRunDate)), "2024-03-15 12:00:00");
}

TEST_F(StartupTest, RefusesASecondInstanceSilently) {
    lock.Running = true;
    const int writes = registry.Writes;
    EXPECT_FALSE(program->Main());
    EXPECT_EQ(registry.Writes, writes);
    settings.SetReg("MultiInstance", true);
    EXPECT_TRUE(program->Main());
}

TEST_F(StartupTest, EndsForANewerProgramAndWhereItCannotRun) {
    shell.Supported = false;
    EXPECT_FALSE(program->Main());
    EXPECT_EQ(TakeBoxes(), Lines{"Wrong system"});
    folder.Write("program/Korvalin_new.exe", std::string(ShortestProgram, 'x'));
    fs::permissions(newProgram, fs::perms::owner_all);
    EXPECT_FALSE(program->Main());
    EXPECT_EQ(shell.Started.size(), 1U);
    EXPECT_EQ(program->lines.ProgramStart, 0) << "nothing is loaded";
}

TEST_F(StartupTest, AnErrorInOneStepEndsOnlyThatStep) {
    const fs::path backup = folder.Write("Korvalin_Stats.db_old", "records");
    fs::last_write_time(backup, fs::file_time_type::clock::now() - std::chrono::years(50));
    settings.SetReg("DeleteStatistics", 1);
    program->startup.Plug({.LoadUserVar = [] { throw NumberedError(7, "settings"); }});
    EXPECT_TRUE(program->Main());
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
        Put("Korvalin.lng", row.Download == "good" ? WholeTexts() : row.Download);
        boxes.Answers = row.Answers;
        EXPECT_EQ(program->Main(), row.Starts);
        Lines shown = TakeBoxes();
        for (std::string& text : shown)
            text.resize(text.starts_with(corrupted) ? corrupted.size() : missing.size());
        EXPECT_EQ(shown, row.Shown);
        EXPECT_EQ(Asked(), Lines(row.Downloads, "Korvalin.lng"));
    }
    setenv("KORVALIN_UPDATE_SITE", "", 1);
    program = std::make_unique<Program>(AllPorts(), locale);
    EXPECT_FALSE(program->Main());
    EXPECT_EQ(boxes.Take().Buttons, MessageButtons::Ok) << "nothing is offered that cannot be had";
}

TEST_F(StartupTest, NotesANewVersion) {
    const std::string text = Program::Version().Text();
    struct {
        std::string Stored, Text;
        bool StaysUnwanted, ChecksSoon;
    } const rows[] = {{ToLower(text), ToLower(text), true, false},
                      {Program::Version().Series() + ".77", text, true, true},
                      {"V0.0.5", text, false, true}};
    for (const auto& row : rows) {
        settings.SetReg("PrgVersion", row.Stored);
        settings.SetReg("msinetNotWanted", true);
        settings.SetReg("UpdateCheckLast", clock.Now());
        EXPECT_TRUE(program->Main());
        EXPECT_EQ(settings.Get(Keys::PrgVersion), row.Text);
        EXPECT_EQ(settings.Get(Keys::msinetNotWanted), row.StaysUnwanted) << row.Stored;
        EXPECT_EQ(settings.Get(Keys::UpdateCheckLast),
                  row.ChecksSoon ? DateSerial(2024, 1, 15) : clock.Now());
    }
}

} // namespace
