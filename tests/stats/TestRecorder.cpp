#include "StatsFixture.h"
#include "stats/Recorder.h"

#include <cerrno>
#include <cstring>

using namespace korvalin;

namespace {

constexpr std::string_view header =
    "Line,LogIn,LogOut,Duration,Bytes Transmitted,Bytes Received,Bytes Total,User,IP,Info\r\n";

class RecorderTest : public StatsFixture {
  protected:
    RecorderTest() {
        WriteTexts("GER\tmodStats\t2\tbeendet\nGER\tmodStats\t3\tabgemeldet\nGER\tmodStats\t4\tTask-Manager\n"
                   "GER\tmodStats\t5\tGrund\nGER\tmodStats\t6\tTag\nGER\tmodStats\t7\tName\n"
                   "GER\tmodStats\t8\tUnterbrochen\nGER\tfrmStatistik\t15\tGetrennt\n");
        settings.SetReg("Language", std::string("GER"));
        EXPECT_TRUE(language.InitProgramTexts());
        lines.PreviousLineTable = TableFromOne<LineRecord>();
        lines.LineCount = 0;
        EXPECT_TRUE(recorder.TakeOver());
    }
    LineRecord& AddLine(const std::string& name, Date logIn, Date duration, double received) {
        LineRecord line;
        line.EntryName = name;
        line.LogIn = logIn;
        line.Duration = duration;
        line.BytesReceived = received;
        line.BytesTransmitted = 700;
        line.User = "alice";
        lines.PreviousLineTable.Append(line);
        return lines.PreviousLineTable(++lines.LineCount);
    }
    std::string Stats() const { return folder.Read("Korvalin_Stats.db"); }
    std::string Export() const { return folder.Read("Korvalin_Stats.csv"); }
    // The error log without times.
    std::string LogEntries() const {
        std::string entries;
        std::istringstream log(Log());
        for (std::string line; std::getline(log, line);)
            entries += line.substr(line.find('\t') + 1, line.size() - line.find('\t') - 2) + "\n";
        return entries;
    }

    void Save(CloseReason reason, std::size_t index) {
        recorder.SaveStatsLine(reason, index);
        Write();
    }
    void Write(Recorder::Moment moment = Recorder::Moment::Running, bool areKept = true) {
        recorder.WritePending(moment);
        recorder.TellUnwritten(moment, areKept);
    }

    Recorder recorder{{.LineState = lines,
                       .CounterLedger = ledger,
                       .Files = files,
                       .Errors = errors,
                       .Language = language,
                       .Clock = clock,
                       .RecordingLock = recordingLock,
                       .Locale = locale,
                       .DataFolder = dataFolder,
                       .MonthSums = monthSums}};
};

TEST_F(RecorderTest, TellsWhyARecordWasWritten) {
    AddLine("ISP", clock.Now(), OneSecond, 1).IsRas = true;
    const std::pair<int, const char*> rows[] = {{0, "beendet"},      {1, "beendet"},       {2, "abgemeldet"},
                                                {3, "Task-Manager"}, {10, "Getrennt"},     {11, "Tag"},
                                                {12, "Name"},        {13, "Unterbrochen"}, {7, "Grund 7."}};
    for (const auto& [reason, text] : rows) {
        std::filesystem::remove(folder / "Korvalin_Stats.db");
        Save(static_cast<CloseReason>(reason), 1);
        EXPECT_EQ(Stats(), "\"ISP\",#2024-03-15 12:00:00#,#00:00:01#,700,1,\"2024-03-15 12:00:00 " +
                               std::string(text) + "\",\"alice\"\r\n");
    }
}

TEST_F(RecorderTest, WritesBothFilesInTheirForms) {
    AddLine("B\xFCro", At("2024-03-15 11:48:00"), At("00:12:00"), 5'000'000).IpAddress = "192.0.2.7";
    AddLine("=a,\"b\"", At("2024-03-14"), At("1899-12-31 01:00:00"), 1e13);
    for (LineRecord& line : lines.PreviousLineTable)
        line.IsRas = true;
    locale.ShortDate = "dd.mm.yyyy";
    Save(CloseReason::SystemEnd, 0);
    EXPECT_EQ(Stats(), "\"Büro\",#2024-03-15 11:48:00#,#00:12:00#,700,5000000,"
                       "\"15.03.2024 12:00:00 abgemeldet\",\"alice\"\r\n"
                       "\"=a,'b'\",#2024-03-14#,#1899-12-31 01:00:00#,700,10000000000000,"
                       "\"15.03.2024 12:00:00 abgemeldet\",\"alice\"\r\n");
    const std::string german =
        std::string(header) +
        "Büro,15.03.2024 11:48:00,15.03.2024 12:00:00,00:12:00,700,5000000,5000700,alice,192.0.2.7,"
        "15.03.2024 12:00:00 abgemeldet\r\n"
        "'=a;\"b\",14.03.2024,15.03.2024 01:00:00,25:00:00,700,10000000000000,"
        "10000000000700,alice,,15.03.2024 12:00:00 abgemeldet\r\n";
    EXPECT_EQ(Export(), german);
    locale.ShortDate = "m/d/yyyy";
    locale.Time = "h:nn:ss AMPM";
    lines.PreviousLineTable(1).Continued = true; // in another run
    Save(CloseReason::SystemEnd, 1);
    EXPECT_EQ(Export(), german + "Büro,3/15/2024 11:48:00 AM,3/15/2024 12:00:00 PM,00:12:00,700,5000000,"
                                 "5000700,alice,192.0.2.7,3/15/2024 12:00:00 PM abgemeldet\r\n");
    EXPECT_EQ(Load(Stats()), 2) << "both are read back, the first one's copies as one";
}

TEST_F(RecorderTest, LeavesOutDialUpLinesThatHardlyMovedAndGivesTheRestADuration) {
    lines.ProgramStart = clock.Now() - 90 * OneSecond;
    AddLine("few", clock.Now(), 0, 1000);
    AddLine("short", clock.Now(), OneSecond, 0);
    AddLine("loud", clock.Now(), 0, 1001);
    for (LineRecord& line : lines.PreviousLineTable)
        line.IsRas = true;
    Save(CloseReason::Program, 0);
    EXPECT_EQ(Stats().find("few"), std::string::npos);
    EXPECT_NE(Stats().find("\"short\",#"), std::string::npos);
    EXPECT_NE(Stats().find("\"loud\",#2024-03-15 12:00:00#,#00:01:30#,"), std::string::npos);
    EXPECT_NE(Export().find("loud,2024-03-15 12:00:00,2024-03-15 12:01:30,00:01:30,"), std::string::npos);
}

TEST_F(RecorderTest, AnAdaptersRecordStandsInItsDayBesideTheOthersOfItsLine) {
    struct {
        const char* Case;
        const char *LogIn, *Duration, *Expected;
    } const rows[] = {
        {"within the last one", "10:30:00", "00:45:00", "#2024-03-15 10:30:00#,#00:45:00#"},
        {"begins with it", "10:00:20", "02:00:00", "#2024-03-15 10:01:00#,#01:59:20#"},
        {"at its end", "11:00:00", "00:10:00", "#2024-03-15 11:00:00#,#00:10:00#"},
        {"short, at the same time", "10:00:00", "00:00:00", "#2024-03-15 09:59:59#,#00:00:00#"},
    };
    for (const auto& row : rows) {
        folder.Write("Korvalin_Stats.db", Line("ETH0", "10:00:00", "01:00:00"));
        AddLine("eth0", At(std::string("2024-03-15 ") + row.LogIn), At(row.Duration), 5);
        Save(CloseReason::LineEnded, lines.LineCount);
        EXPECT_NE(Stats().find(row.Expected), std::string::npos) << row.Case << "\n" << Stats();
        EXPECT_EQ(Load(Stats()), 2) << row.Case;
    }
}

TEST_F(RecorderTest, ARecordThatCannotBeWrittenGoesToTheLogAndItsCauseIsToldOnce) {
    AddLine("eth0", At("2024-03-15 11:00:00"), At("01:00:00"), 5);
    const auto logged = [&](const char* name, int error, const char* line) {
        return "SaveStats\tNot written to " + (folder / name).string() + ": " + strerror(error) +
               "\nSaveStats\t" + line + "\n";
    };
    const auto box = [&](const char* texts) {
        return Lines{"t208\n" + (folder / "Korvalin_Stats.db").string() + "\n\n" + texts};
    };
    struct {
        int Error;
        const char* Cause;
        bool AtOnce;
    } const rows[] = {{EAGAIN, "t212", false}, {EACCES, "t211", true}, {EPERM, "t211", true},
                      {EROFS, "t210", true},   {ENOSPC, "t209", true}, {EIO, "t214", true}};
    for (const auto& row : rows) {
        files.DurableResult = 0;
        Write();
        clock.Advance(10);
        clock.SetWallClock(At("2024-03-15 12:00:00"));
        std::filesystem::remove(folder / "Korvalin_ErrorLog.txt");
        std::filesystem::remove(folder / "Korvalin_Stats.db");
        files.DurableResult = row.Error;
        Save(CloseReason::LineEnded, 1);
        EXPECT_EQ(LogEntries(), logged("Korvalin_Stats.db", row.Error,
                                       "\"eth0\",#2024-03-15 11:00:00#,#01:00:00#,700,5,"
                                       "\"2024-03-15 12:00:00 Getrennt\",\"alice\"") +
                                    logged("Korvalin_Stats.csv", row.Error,
                                           "eth0,2024-03-15 11:00:00,2024-03-15 12:00:00,01:00:00,700,5,705,"
                                           "alice,,2024-03-15 12:00:00 Getrennt"));
        EXPECT_EQ(TakeBoxes(), row.AtOnce ? box((row.Cause + std::string(" t231")).c_str()) : Lines());
        const std::string told = Log();
        clock.Advance(10);
        Write();
        EXPECT_EQ(Log(), told) << "told once";
        EXPECT_EQ(files.LastWait, Files::Wait::ForRewrite);
        Write(Recorder::Moment::End, false);
        EXPECT_EQ(TakeBoxes(), box((row.Cause + std::string(" t232")).c_str()));
        EXPECT_EQ(files.LastWait, Files::Wait::Briefly) << "an end waits for nobody";
    }
    files.DurableResult = 0;
    Write();
    EXPECT_TRUE(Stats().starts_with("\"eth0\"")) << "written when it can be";
}

} // namespace
