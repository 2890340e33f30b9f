#include "data/DataFolder.h"
#include "fakes/CoreFixture.h"

#include <chrono>
#include <ctime>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

constexpr const char* texts = "GER\tmodAllgemein\t29\tCreate it?\nGER\tmodAllgemein\t30\tNo files in\n"
                              "GER\tmodAllgemein\t31\t.\nGER\tmodAllgemein\t32\tNo folder\n"
                              "GER\tmodAllgemein\t34\tThere are statistics.\nGER\tmodAllgemein\t35\tReally?\n"
                              "GER\tmodAllgemein\t36\tMove\nGER\tmodAllgemein\t37\tthem?\n"
                              "GER\tmodAllgemein\t38\tOk\nGER\tmodAllgemein\t43\tCannot create\n"
                              "GER\tmodAllgemein\t44\t, sorry.\n"
                              "GER\tmodAllgemein\t48\tnow, so in\nGER\tmodAllgemein\t49\t.\n";

// A shell whose answer can be watched, and files that refuse some folders.
class WatchedShell : public FakeShell {
  public:
    std::function<void()> OnFolder = [] {};
    fs::path CommonAppData() override {
        OnFolder();
        return AppData;
    }
};
class ReadOnlyFiles : public FakeFiles {
  public:
    std::vector<fs::path> Folders;
    bool Replace(const fs::path& path, std::string_view content) override {
        const bool refused = std::find(Folders.begin(), Folders.end(), path.parent_path()) != Folders.end();
        errno = EROFS;
        return !refused && FakeFiles::Replace(path, content);
    }
};

class DataFolderTest : public CoreFixture {
  protected:
    DataFolderTest() {
        WriteTexts(texts);
        settings.SetReg("Language", "GER");
        language.InitProgramTexts();
        places.AppData = folder / "share";
    }

    static void Put(const fs::path& file, std::string_view content) {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
    }
    /// "name=content" of all files of a folder but the texts, in order, without "Korvalin_Stats.".
    static std::string Contents(const fs::path& place) {
        std::map<std::string, std::string> found;
        std::error_code missing;
        for (const auto& entry : fs::directory_iterator(place, missing)) {
            std::ifstream file(entry.path());
            found[entry.path().filename().string()] = {std::istreambuf_iterator<char>(file), {}};
        }
        std::string all;
        for (const auto& [name, content] : found) {
            if (!name.ends_with(".lng"))
                all += (name.starts_with("Korvalin_Stats.") ? name.substr(15) : name) + "=" + content + " ";
        }
        return all;
    }

    WatchedShell places;
    ReadOnlyFiles disk;
    fs::path share = folder / "share/Korvalin";
    DataFolder::Parts Parts() {
        return {.Settings = settings,
                .Language = language,
                .Errors = errors,
                .MessageBoxes = boxes,
                .Files = disk,
                .Shell = places,
                .Clock = clock};
    }
    DataFolder data{Parts(), programFolder};
};

TEST_F(DataFolderTest, TakesStatisticsOfTheProgramFolderWhenTheDiskHasRoomAgain) {
    struct {
        std::string Old, New, Joined;
    } const rows[] = {{"old", "", "db=old "},
                      {"a\r\nboth\nb", "both\r\nc\r\n", "db=both\r\nc\r\na\r\nb\r\n "}};
    for (const auto& row : rows) {
        settings.SetReg("DataPath", "");
        fs::remove_all(share);
        fs::remove(programFolder / "Korvalin_Stats.db_20240315-120000");
        Put(programFolder / "Korvalin_Stats.db", row.Old);
        if (!row.New.empty()) Put(share / "Korvalin_Stats.db", row.New);
        const std::string before = Contents(share);
        errors.ShiftMoments(-3 * OneSecond);
        disk.CopyFails = true;
        disk.DurableResult = ENOSPC;
        EXPECT_EQ(DataFolder(Parts(), programFolder).GetDataPath(), programFolder / "");
        EXPECT_NE(boxes.Take().Text.find("t209"), std::string::npos);
        EXPECT_EQ(Contents(programFolder), "db=" + row.Old + " ");
        EXPECT_EQ(Contents(share), before);
        EXPECT_EQ(settings.Get(Keys::DataPath), "");
        disk.CopyFails = false;
        disk.DurableResult = 0;
        EXPECT_EQ(DataFolder(Parts(), programFolder).GetDataPath(), share / "");
        EXPECT_EQ(settings.Get(Keys::DataPath), share.string());
        EXPECT_EQ(Contents(share), row.Joined);
        EXPECT_EQ(Contents(programFolder), "db_20240315-120000=" + row.Old + " ");
    }
}

TEST_F(DataFolderTest, FallsBackWithoutAskingTwice) {
    const std::string cannotCreate = "Cannot create " + share.string();
    enum class Ends { Stored, ProgramForThisRun, Elsewhere };
    struct {
        int CreateResult;
        std::vector<fs::path> ReadOnly;
        Ends End;
    } const rows[] = {{13, {}, Ends::Stored},
                      {13, {programFolder}, Ends::ProgramForThisRun},
                      {0, {share, programFolder}, Ends::Elsewhere}};
    for (const auto& row : rows) {
        settings.SetReg("DataPath", "");
        disk.CreateFoldersResult = row.CreateResult;
        disk.Folders = row.ReadOnly;
        DataFolder fresh(Parts(), programFolder);
        const fs::path found = fresh.GetDataPath();
        const std::string instead = found.parent_path().string();
        EXPECT_EQ(
            TakeBoxes(),
            Lines{cannotCreate + (row.End == Ends::Stored ? ", sorry." : " now, so in " + instead + ".")});
        EXPECT_EQ(fresh.GetDataPath(), found);
        EXPECT_EQ(settings.Get(Keys::DataPath), row.End == Ends::Stored ? programFolder.string() : "");
        EXPECT_EQ(found == programFolder / "", row.End != Ends::Elsewhere) << found;
        EXPECT_TRUE(fs::is_directory(found));
        if (row.End == Ends::Elsewhere) fs::remove_all(found);
    }
}

TEST_F(DataFolderTest, AChosenFolderThatIsAwayStaysChosenAndIsUsedWhenItIsBack) {
    const fs::path away = folder / "drive/data";
    settings.SetReg("DataPath", away.string());
    for (int call = 0; call < 2; ++call)
        EXPECT_EQ(data.GetDataPath(), share / "");
    EXPECT_EQ(TakeBoxes(), Lines{"Cannot create " + away.string() + " now, so in " + share.string() + "."});
    EXPECT_EQ(settings.Get(Keys::DataPath), away.string());
    EXPECT_FALSE(data.BeginToRecord());
    EXPECT_EQ(data.JournalFolder(), places.SettingsFolder());
    Put(share / "Korvalin_Stats.db", "both\r\nmeanwhile\r\n");
    Put(away / "Korvalin_Stats.db", "before\r\nboth\r\n");
    EXPECT_EQ(data.GetDataPath(), away / "");
    DataFolder next(Parts(), programFolder);
    for (const bool fetched : {true, false}) {
        EXPECT_EQ(next.BeginToRecord(), fetched);
        EXPECT_EQ(Contents(away), "db=before\r\nboth\r\nmeanwhile\r\n ");
    }
    disk.Folders = {away};
    DataFolder readOnly(Parts(), programFolder);
    EXPECT_FALSE(readOnly.BeginToRecord() || readOnly.BeginToRecord());
    EXPECT_FALSE(readOnly.CheckDataFolder(away));
    const std::string cause = "t208\n" + away.string();
    EXPECT_EQ(TakeBoxes(), (Lines{cause + "/\n\nt210 t231", cause + "\n\nt210"}));
}

TEST_F(DataFolderTest, AnswersALogLineFromInsideItself) {
    errors.Plug({[](int) { return ""; }, [this] { return data.GetDataPath(); }, [] {}});
    places.OnFolder = [this] {
        errors.WriteErrorLog("inside", "test");
        throw NumberedError(5, "no shell");
    };
    EXPECT_EQ(data.GetDataPath(), programFolder / "");
    EXPECT_NE(boxes.Take().Text.find("GetDataPath"), std::string::npos);
    EXPECT_NE(folder.Read("program/Korvalin_ErrorLog.txt").find("inside"), std::string::npos);
}

TEST_F(DataFolderTest, ChecksAFolder) {
    const fs::path missing = folder / "new/deep";
    const fs::path file = programFolder / "Korvalin.lng";
    const std::string create = missing.string() + "\n\nCreate it?";
    struct {
        fs::path Name;
        MessageAnswer Answer;
        bool Accepted;
        Lines Shown;
    } const rows[] = {{"", MessageAnswer::Yes, false, {}},
                      {missing, MessageAnswer::No, false, {create}},
                      {missing, MessageAnswer::Yes, true, {create}},
                      {file, MessageAnswer::Yes, false, {"No folder " + file.string()}}};
    for (const auto& row : rows) {
        boxes.Answers = {row.Answer};
        EXPECT_EQ(data.CheckDataFolder(row.Name), row.Accepted) << row.Name;
        EXPECT_EQ(TakeBoxes(), row.Shown);
    }
    Put(missing / "Test.txt", "the user's own");
    EXPECT_TRUE(data.CheckDataFolder(missing));
    EXPECT_EQ(Contents(missing), "Test.txt=the user's own ");
}

TEST_F(DataFolderTest, ChangesTheFolderAsTheUserAnswers) {
    const auto yes = MessageAnswer::Yes;
    const auto no = MessageAnswer::No;
    const std::string keep = "There are statistics. Really?";
    const std::string move = "Move them? Really? Ok";
    const std::string moved = "db_20240315-120000=old ";
    const std::string both = "db=old db_20240315-120000=new ";
    struct {
        bool Ask, HasNew;
        std::deque<MessageAnswer> Answers;
        Lines Shown;
        std::string Old, New;
    } const rows[] = {{false, false, {}, {}, moved, "db=old "},
                      {true, true, {yes}, {keep}, "db=old ", "db=new "},
                      {true, true, {no, yes}, {keep, move}, moved, both},
                      {true, false, {no}, {move}, "db=old ", ""}};
    int number = 0;
    for (const auto& row : rows) {
        const fs::path from = folder / ("from" + std::to_string(number));
        const fs::path to = folder / ("to" + std::to_string(number++));
        fs::create_directories(to);
        Put(from / "Korvalin_Stats.db", "old");
        if (row.HasNew) Put(to / "Korvalin_Stats.db", "new");
        boxes.Answers = row.Answers;
        EXPECT_TRUE(data.ChangeDataPath(from, to, row.Ask));
        EXPECT_EQ(TakeBoxes(), row.Shown);
        EXPECT_EQ(Contents(from), row.Old);
        EXPECT_EQ(Contents(to), row.New);
    }
}

TEST_F(DataFolderTest, MovesNothingToAFolderThatCannotBeStored) {
    Put(share / "Korvalin_Stats.db", "old");
    Put(folder / "to/Korvalin_Stats.db", "new");
    settings.SetReg("DataPath", share.string());
    bool leaves = true;
    data.Plug({.LeaveFolder = [&] { return leaves; }});
    for (const auto& [isReadOnly, journalIsSafe] : {std::pair(true, true), std::pair(false, false)}) {
        registry.IsReadOnly = isReadOnly;
        leaves = journalIsSafe;
        boxes.Answers = {MessageAnswer::No, MessageAnswer::Yes};
        EXPECT_FALSE(data.ChangeDataPath(share, folder / "to", true));
        EXPECT_EQ(TakeBoxes().size(), 3U) << "two questions and the failure";
        EXPECT_EQ(Contents(share) + Contents(folder / "to"), "db=old db=new ");
        EXPECT_EQ(data.GetDataPath(), share / "");
        clock.Advance(5); // the same failure at once would not be told again
    }
}

TEST_F(DataFolderTest, LeavesTheSameFolderAloneAndNeverOverwritesABackup) {
    Put(share / "Korvalin_Stats.db", "first");
    fs::create_directory_symlink(share, folder / "link");
    EXPECT_TRUE(data.ChangeDataPath(share, folder / "link", false));
    EXPECT_EQ(Contents(share), "db=first ");
    EXPECT_TRUE(data.ChangeDataPath(share, programFolder, false));
    Put(share / "Korvalin_Stats.db", "second");
    EXPECT_TRUE(data.ChangeDataPath(share, programFolder, false));
    EXPECT_EQ(Contents(share), "db_20240315-120000=first db_20240315-120001=second ");
}

TEST_F(DataFolderTest, DeletesOldBackupsOnly) {
    const auto put = [this](const char* suffix, int day, int second) {
        std::tm local{};
        local.tm_year = 2024 - 1900, local.tm_mon = 2, local.tm_mday = day;
        local.tm_sec = second, local.tm_isdst = -1;
        const fs::path file = share / (std::string("Korvalin_Stats.") + suffix);
        Put(file, "");
        const auto moment = std::chrono::system_clock::from_time_t(std::mktime(&local));
        fs::last_write_time(file, std::chrono::file_clock::from_sys(moment));
    };
    for (const char* suffix : {"db", "txt_1", "db_1"})
        put(suffix, 1, 0);
    put("db_7", 8, -1);
    put("db_8", 8, 0); // noon of the 15th less seven days is the beginning of the 8th
    settings.SetReg("DataPath", share.string());
    data.DeleteStatistics();
    EXPECT_EQ(Contents(share), "db= db_1= db_7= db_8= txt_1= ") << "none by default";
    settings.SetReg("DeleteStatistics", 7);
    data.DeleteStatistics();
    EXPECT_EQ(Contents(share), "db= db_8= txt_1= ");
}

} // namespace
