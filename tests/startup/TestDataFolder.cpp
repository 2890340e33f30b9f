#include "startup/DataFolder.h"

#include "fakes/Ground.h"
#include "startup/FileWait.h"

#include <chrono>
#include <ctime>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

constexpr const char* texts =
    "GER\tmodAllgemein\t29\tCreate it?\nGER\tmodAllgemein\t30\tNo files in\n"
    "GER\tmodAllgemein\t31\t.\nGER\tmodAllgemein\t32\tNo folder\n"
    "GER\tmodAllgemein\t34\tThere are statistics.\nGER\tmodAllgemein\t35\tReally?\n"
    "GER\tmodAllgemein\t36\tMove\nGER\tmodAllgemein\t37\tthem?\nGER\tmodAllgemein\t38\tOk\n"
    "GER\tmodAllgemein\t43\tCannot create\nGER\tmodAllgemein\t44\t, sorry.\n";

// A shell whose answer can be watched, and files that refuse some folders.
class WatchedShell : public FakeShell {
  public:
    std::function<void()> OnFolder = [] {};
    fs::path SpecialFolder(int id) override {
        OnFolder();
        return FakeShell::SpecialFolder(id);
    }
};
class ReadOnlyFiles : public FakeFiles {
  public:
    std::vector<fs::path> Folders;
    bool Replace(const fs::path& path, std::string_view content) override {
        const bool refused = std::find(Folders.begin(), Folders.end(), path.parent_path()) != Folders.end();
        return !refused && FakeFiles::Replace(path, content);
    }
};

class DataFolderTest : public ::testing::Test, protected Ground {
  protected:
    DataFolderTest() {
        WriteTexts(texts);
        Settings.SetReg("Language", "GER");
        Language.InitProgramTexts();
        Places.Folders[SpecialFolderCommonAppData] = Folder / "share";
    }

    void Put(const fs::path& file, std::string_view content) {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
    }

    /// "name=content" of all files of a folder, in order.
    std::string Contents(const fs::path& folder) const {
        std::map<std::string, std::string> files;
        if (fs::exists(folder)) {
            for (const auto& entry : fs::directory_iterator(folder)) {
                std::ifstream file(entry.path());
                files[entry.path().filename().string()] = {std::istreambuf_iterator<char>(file), {}};
            }
        }
        std::string all;
        for (const auto& [name, content] : files) {
            if (!name.ends_with(".lng")) all += name + "=" + content + " ";
        }
        return all;
    }

    WatchedShell Places;
    ReadOnlyFiles Disk;
    fs::path Share = Folder / "share/Korvalin";
    DataFolder Data{Settings, Language, Errors, Boxes, Disk, Places, Clock, Program};
};

TEST_F(DataFolderTest, MovesOlderStatisticsAtTheFirstStart) {
    Put(Program / "Korvalin_Stats.db", "old");
    EXPECT_EQ(Data.GetDataPath().string(), (Share / "").string());
    EXPECT_EQ(Settings.GetText("DataPath"), Share.string());
    EXPECT_EQ(Contents(Share), "Korvalin_Stats.db=old ");
    EXPECT_EQ(Contents(Program), "Korvalin_Stats.db_20240315-120000=old ");
}

TEST_F(DataFolderTest, TakesTheDefaultForAFolderThatIsGoneWithoutMoving) {
    Put(Program / "Korvalin_Stats.db", "old");
    Settings.SetReg("DataPath", (Folder / "gone").string());
    EXPECT_EQ(Data.GetDataPath(), Share / "");
    EXPECT_EQ(Contents(Program), "Korvalin_Stats.db=old ");
    fs::create_directories(Folder / "other");
    Settings.SetReg("DataPath", (Folder / "other/").string());
    EXPECT_EQ(Data.GetDataPath().string(), (Folder / "other/").string());
}

TEST_F(DataFolderTest, FallsBackWithoutAskingTwice) {
    const std::string cannotCreate = "Cannot create " + Share.string() + ", sorry.";
    const std::string noFiles = "No files in ";
    enum class Ends { Stored, ProgramForThisRun, Elsewhere };
    struct {
        int CreateResult;
        bool ShareReadOnly;
        bool ProgramReadOnly;
        Lines Shown;
        Ends End;
    } const rows[] = {
        {13, false, false, {cannotCreate}, Ends::Stored},
        {13, false, true, {cannotCreate, noFiles + Program.string() + "."}, Ends::ProgramForThisRun},
        {0, true, false, {noFiles + Share.string() + "."}, Ends::ProgramForThisRun},
        {0, true, true, {noFiles + Share.string() + "."}, Ends::Elsewhere},
    };
    for (const auto& row : rows) {
        Settings.SetReg("DataPath", "");
        Disk.CreateFoldersResult = row.CreateResult;
        Disk.Folders.clear();
        if (row.ShareReadOnly) Disk.Folders.push_back(Share);
        if (row.ProgramReadOnly) Disk.Folders.push_back(Program);
        DataFolder data(Settings, Language, Errors, Boxes, Disk, Places, Clock, Program);
        const fs::path folder = data.GetDataPath();
        EXPECT_EQ(TakeBoxes(), row.Shown);
        EXPECT_EQ(data.GetDataPath(), folder);
        EXPECT_EQ(Settings.GetText("DataPath"), row.End == Ends::Stored ? Program.string() : "");
        EXPECT_EQ(folder == Program / "", row.End != Ends::Elsewhere) << folder;
        EXPECT_TRUE(fs::is_directory(folder));
        if (row.End == Ends::Elsewhere) fs::remove_all(folder);
    }
}

TEST_F(DataFolderTest, AnswersALogLineFromInsideItself) {
    Errors.Plug({[](int) { return ""; }, [this] { return Data.GetDataPath(); }, [] {}});
    Places.OnFolder = [this] {
        Errors.WriteErrorLog("inside", "test");
        throw NumberedError(5, "no shell");
    };
    EXPECT_EQ(Data.GetDataPath(), Program / "");
    EXPECT_NE(Boxes.Take().Text.find("GetDataPath"), std::string::npos);
    EXPECT_NE(Folder.Read("program/Korvalin_ErrorLog.txt").find("inside"), std::string::npos);
}

TEST_F(DataFolderTest, ChecksAFolder) {
    const fs::path missing = Folder / "new/deep";
    struct {
        fs::path Name;
        MessageAnswer Answer;
        bool Accepted;
        Lines Shown;
    } const rows[] = {
        {"", MessageAnswer::Yes, false, {}},
        {Program, MessageAnswer::No, true, {}},
        {missing, MessageAnswer::No, false, {missing.string() + "\n\nCreate it?"}},
        {missing, MessageAnswer::Yes, true, {missing.string() + "\n\nCreate it?"}},
        {Program / "Korvalin.lng",
         MessageAnswer::Yes,
         false,
         {"No folder " + (Program / "Korvalin.lng").string()}},
    };
    for (const auto& row : rows) {
        Boxes.Answers = {row.Answer};
        EXPECT_EQ(Data.CheckDataFolder(row.Name), row.Accepted) << row.Name;
        EXPECT_EQ(TakeBoxes(), row.Shown);
    }
    Put(missing / "Test.txt", "the user's own");
    EXPECT_TRUE(Data.CheckDataFolder(missing));
    EXPECT_EQ(Contents(missing), "Test.txt=the user's own ");
}

TEST_F(DataFolderTest, ChangesTheFolderAsTheUserAnswers) {
    const auto yes = MessageAnswer::Yes;
    const auto no = MessageAnswer::No;
    const std::string keep = "There are statistics. Really?";
    const std::string move = "Move them? Really? Ok";
    const std::string suffix = "_20240315-120000=";
    const std::string oldMoved = "Korvalin_Stats.db" + suffix + "old ";
    struct {
        bool Ask, HasOld, HasNew;
        std::deque<MessageAnswer> Answers;
        Lines Shown;
        std::string Old, New;
    } const rows[] = {
        {false, true, false, {}, {}, oldMoved, "Korvalin_Stats.db=old "},
        {false, true, true, {}, {}, oldMoved, "Korvalin_Stats.db=old Korvalin_Stats.db" + suffix + "new "},
        {true, true, true, {yes}, {keep}, "Korvalin_Stats.db=old ", "Korvalin_Stats.db=new "},
        {true, true, true, {no, no}, {keep, move}, "Korvalin_Stats.db=old ", "Korvalin_Stats.db=new "},
        {true,
         true,
         true,
         {no, yes},
         {keep, move},
         oldMoved,
         "Korvalin_Stats.db=old Korvalin_Stats.db" + suffix + "new "},
        {true, true, false, {yes}, {move}, oldMoved, "Korvalin_Stats.db=old "},
        {true, true, false, {no}, {move}, "Korvalin_Stats.db=old ", ""},
    };
    int number = 0;
    for (const auto& row : rows) {
        const fs::path from = Folder / ("from" + std::to_string(number));
        const fs::path to = Folder / ("to" + std::to_string(number++));
        fs::create_directories(from);
        fs::create_directories(to);
        if (row.HasOld) Put(from / "Korvalin_Stats.db", "old");
        if (row.HasNew) Put(to / "Korvalin_Stats.db", "new");
        Boxes.Answers = row.Answers;
        EXPECT_TRUE(Data.ChangeDataPath(from, to, row.Ask));
        EXPECT_EQ(TakeBoxes(), row.Shown);
        EXPECT_EQ(Contents(from), row.Old);
        EXPECT_EQ(Contents(to), row.New);
    }
}

TEST_F(DataFolderTest, LeavesTheSameFolderAlone) {
    Put(Share / "Korvalin_Stats.db", "old");
    fs::create_directory_symlink(Share, Folder / "link");
    for (const fs::path& same : {Share, Share / "", Folder / "link"}) {
        EXPECT_TRUE(Data.ChangeDataPath(Share, same, false));
        EXPECT_EQ(Contents(Share), "Korvalin_Stats.db=old ");
    }
}

TEST_F(DataFolderTest, NeverOverwritesABackup) {
    for (const char* content : {"first", "second"}) {
        Put(Program / "Korvalin_Stats.db", content);
        EXPECT_TRUE(Data.ChangeDataPath(Program, Folder / "log", false));
    }
    EXPECT_EQ(Contents(Program),
              "Korvalin_Stats.db_20240315-120000=first Korvalin_Stats.db_20240315-120001=second ");
}

TEST_F(DataFolderTest, KeepsTheStatisticsWhenTheDiskIsFull) {
    Put(Program / "Korvalin_Stats.db", "old");
    Put(Share / "Korvalin_Stats.db", "new");
    Disk.CopyFails = true;
    EXPECT_EQ(Data.GetDataPath(), Program / "");
    EXPECT_NE(Boxes.Take().Text.find("ChangeDataPath"), std::string::npos);
    EXPECT_EQ(Contents(Program), "Korvalin_Stats.db=old ");
    EXPECT_EQ(Contents(Share), "Korvalin_Stats.db=new ");
    EXPECT_EQ(Settings.GetText("DataPath"), "");
    Disk.CopyFails = false;
    DataFolder next(Settings, Language, Errors, Boxes, Disk, Places, Clock, Program);
    EXPECT_EQ(next.GetDataPath(), Share / "");
    EXPECT_TRUE(Contents(Share).starts_with("Korvalin_Stats.db=old "));
}

TEST_F(DataFolderTest, DeletesOldBackupsOnly) {
    const auto put = [this](const char* suffix, int day, int second) {
        std::tm local{};
        local.tm_year = 2024 - 1900, local.tm_mon = 2, local.tm_mday = day;
        local.tm_sec = second, local.tm_isdst = -1;
        const fs::path file = Share / (std::string("Korvalin_Stats.") + suffix);
        Put(file, "");
        const auto moment = std::chrono::system_clock::from_time_t(std::mktime(&local));
        fs::last_write_time(file, std::chrono::file_clock::from_sys(moment));
    };
    put("db", 1, 0);
    put("txt_1", 1, 0);
    put("db_1", 1, 0);
    put("db_7", 8, -1);
    put("db_8", 8, 0); // noon of the 15th less seven days is the beginning of the 8th
    Settings.SetReg("DataPath", Share.string());
    const std::string others = "Korvalin_Stats.db= ";
    const std::string backups = "Korvalin_Stats.db_1= Korvalin_Stats.db_7= Korvalin_Stats.db_8= ";
    for (const auto& [days, left] :
         std::map<int, std::string>{{-1, backups}, {0, backups}, {7, "Korvalin_Stats.db_8= "}}) {
        Settings.SetReg("DeleteStatistics", days);
        Data.DeleteStatistics();
        EXPECT_EQ(Contents(Share), others + left + "Korvalin_Stats.txt_1= ") << days;
    }
}

TEST_F(DataFolderTest, WaitsForAFileToGo) {
    // A folder of that name stands for a file that the system holds.
    const fs::path held = Folder / "held";
    fs::create_directories(held);
    const double start = Clock.AwakeSeconds();
    EXPECT_FALSE(DeleteFileWait(held, 30, Events, Clock));
    EXPECT_NEAR(Clock.AwakeSeconds() - start, 30, 0.2);
    Events.OnProcessPending = [&] {
        Clock.SetWallClock(0); // the wall clock plays no part
        if (Clock.AwakeSeconds() > start + 32) fs::remove(held);
    };
    EXPECT_TRUE(DeleteFileWait(held, 30, Events, Clock));
    EXPECT_LT(Clock.AwakeSeconds() - start, 33);
    Put(held, "x");
    EXPECT_TRUE(DeleteFileWait(held, 1, Events, Clock));
    EXPECT_FALSE(fs::exists(held));
    EXPECT_TRUE(DeleteFileWait(held, 1, Events, Clock));
}

} // namespace
} // namespace korvalin
