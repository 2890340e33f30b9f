#include "StatsFixture.h"
#include "stats/DayImport.h"

using namespace korvalin;

namespace {

class DayImportTest : public StatsFixture {
  protected:
    static CountedDay Day(const std::string& adapter, const std::string& day, double received = 10) {
        return {adapter, At(day), received, 0};
    }
    DayImport Import(const StatRecords& there) {
        return ImportDays(days, there, DayOf(clock.Now()), "note", locale);
    }
    // Each adapter: taken, known, recorded, running, empty.
    static std::string Counts(const DayImport& import) {
        std::string text;
        for (const ImportedAdapter& a : import.Adapters)
            text +=
                fmt::format("{} {}{}{}{}{} ", a.Adapter, a.Taken, a.Known, a.Recorded, a.Running, a.Empty);
        return text;
    }
    std::vector<CountedDay> days;
};

const std::string whole14 = R"("eth0",#2024-03-14#,#23:59:59#,0,10,"note",""
)";

TEST_F(DayImportTest, TakesDaysThatNobodyHasRecorded) {
    const struct {
        const char* What;
        std::vector<CountedDay> Days;
        std::string File, Counts;
    } cases[] = {
        {"none", {}, "", ""},
        {"the running day and later ones are left",
         {Day("eth0", "2024-03-14"), Day("eth0", "2024-03-15"), Day("eth0", "2024-03-16")},
         "",
         "eth0 10020 "},
        {"nothing moved", {Day("eth0", "2024-03-14", 0)}, "", "eth0 00001 "},
        {"another line's day",
         {Day("eth0", "2024-03-14")},
         Line("Home", "2024-03-14 10:00:00", "01:00:00"),
         "eth0 10000 "},
        {"a day of its own",
         {Day("ETH0", "2024-03-14")},
         Line("eth0", "2024-03-14 10:00:00", "00:00:00"),
         "ETH0 00100 "},
        {"over midnight",
         {Day("eth0", "2024-03-12"), Day("eth0", "2024-03-13"), Day("eth0", "2024-03-14")},
         Line("eth0", "2024-03-13 23:59:59", "00:00:01"),
         "eth0 10200 "},
        {"for centuries",
         {Day("eth0", "2024-03-14")},
         Line("eth0", "0100-01-01", "9999-01-01"),
         "eth0 00100 "},
        {"imported before", {Day("eth0", "2024-03-14")}, whole14, "eth0 01000 "},
        {"a whole day with other bytes", {Day("eth0", "2024-03-14", 11)}, whole14, "eth0 00100 "},
        {"names that a line shares",
         {Day("Eth0", "2024-03-14"), Day("eth0", "2024-03-14", 11)},
         "",
         "Eth0 10000 eth0 00100 "},
        {"names that the file cannot hold",
         {Day("eth\"0", "2024-03-14")},
         Line("eth'0", "2024-03-14", "00:00:09"),
         "eth\"0 00100 "},
        {"a network that may be the adapter's",
         {Day("eth0", "2024-03-14"), Day("wlan0", "2024-03-13"), Day("wlan0", "2024-03-14")},
         Line("Home", "2024-03-14 10:00:00", "01:00:00"),
         "eth0 10000 wlan0 10100 "},
        {"beside another adapter",
         {Day("eth0", "2024-03-14"), Day("ppp0", "2024-03-14")},
         whole14,
         "eth0 01000 ppp0 10000 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.What);
        days = c.Days;
        Load(c.File);
        EXPECT_EQ(Counts(Import(records)), c.Counts);
    }
}

TEST_F(DayImportTest, AddsThemToTheFileOnceAndKeepsWhatIsThere) {
    days = {Day("eth0", "2024-03-14")};
    const auto make = [this](const StatRecords& there) { return Import(there).Records; };
    const std::string odd = "no record\r\n\"Home\",#10:00:00#,#00:00:01#,0,1,\"B\xFCro\",\"\"";
    const std::string day = "\"eth0\",#2024-03-14#,#23:59:59#,0,10,\"note\",\"\"\r\n";
    using Hindrance = LoadReport::Hindrance;
    const struct {
        std::string Before, After;
        Hindrance Result;
        std::size_t Backups;
    } cases[] = {{"", day, Hindrance::None, 0},
                 {day, day, Hindrance::None, 0},
                 {odd, odd + "\r\n" + day, Hindrance::None, 1},
                 {"no record\r\n", "no record\r\n", Hindrance::NoRecords, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Before);
        folder.Write("Korvalin_Stats.db", c.Before);
        EXPECT_EQ(statFile.AddRecords(make), c.Result);
        EXPECT_EQ(folder.Read("Korvalin_Stats.db"), c.After);
        EXPECT_EQ(statFile.Report().Backup.empty(), c.Backups == 0);
    }
    files.Held = true;
    files.DurableResult = EAGAIN;
    EXPECT_EQ(statFile.AddRecords(make), Hindrance::Held);
    files = FakeFiles();
    files.DiskFull = true;
    folder.Write("Korvalin_Stats.db", odd);
    EXPECT_EQ(statFile.AddRecords(make), Hindrance::DiskFull);
    EXPECT_EQ(folder.Read("Korvalin_Stats.db"), odd);
    files = FakeFiles();
    std::filesystem::remove(statFile.StatFilePath());
    EXPECT_EQ(statFile.AddRecords(make), Hindrance::None);
    EXPECT_EQ(folder.Read("Korvalin_Stats.db"), day);
}

} // namespace
