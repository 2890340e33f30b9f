#include "StatsFixture.h"
#include "stats/LineReader.h"

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

class StatFileTest : public StatsFixture {
  protected:
    // `count` records of one line, each a duplicate of the one before.
    static std::string Chain(int count) {
        std::string content;
        for (int i = 0; i < count; ++i)
            content += Line("eth0", fmt::format("10:{:02}:{:02}", i / 2, i % 2 * 30), "01:00:00");
        return content;
    }
    // Records of one line that lie far apart.
    static std::string Apart(int count) {
        std::string content;
        for (int i = 0; i < count; ++i)
            content += Line("eth0", FormatDateIso(DateSerial(2020, 1, 1) + (i + 0.5) / 10), "00:00:30", i);
        return content;
    }
};

TEST_F(StatFileTest, ReadsEveryLineEndAndEncoding) {
    const std::string first = Line("Büro", "10:00:00", "00:01:00", 1, "für 5 €");
    const std::string second = Line("Büro", "12:00:00", "00:01:00", 2);
    const std::string firstIn1252 = Line("B\xFCro", "10:00:00", "00:01:00", 1, "f\xFCr 5 \x80");
    const std::string mixed = firstIn1252 + second;
    const std::string contents[] = {mixed, "\xEF\xBB\xBF" + mixed, ReplaceAll(mixed, "\r\n", "\n"),
                                    ReplaceAll(mixed, "\r\n", "\r"), mixed.substr(0, mixed.size() - 2)};
    for (const std::string& content : contents) {
        EXPECT_EQ(Load(content, true), 2);
        EXPECT_EQ(Stored(), first + second);
        EXPECT_EQ(folder.Read("Korvalin_Stats.db"), content) << "nothing to repair";
    }
}

TEST_F(StatFileTest, CutsLinesWhereverABlockEnds) {
    const std::string content = "a\r\nb\n\rc\r\rd\n\n\r\n\nlast";
    for (std::size_t block = 1; block <= content.size(); ++block) {
        Lines cut;
        LineSplitter splitter([&](std::string_view line) { cut.emplace_back(line); });
        for (std::size_t i = 0; i < content.size(); i += block)
            splitter.Feed(std::string_view(content).substr(i, block));
        splitter.Finish();
        EXPECT_EQ(cut, (Lines{"a", "b", "", "c", "", "d", "", "", "", "last"})) << "blocks of " << block;
    }
}

TEST_F(StatFileTest, DropsWhatIsNoRecordAndNumbersTheRest) {
    const std::string good = Line("eth0", "10:00:00", "00:01:00");
    const std::string other = Line("eth1", "09:00:00", "00:01:00");
    const std::string longest = "\"" + std::string(1024 * 1024, 'x') + good.substr(1);
    const std::string content = good + std::string("\0\0garbage\0", 10) + "\r\n\r\n" + longest + other;
    EXPECT_EQ(Load(content), 2);
    EXPECT_EQ(statFile.Report().Dropped, 3U);
    EXPECT_EQ(Stored(), good + other);
    EXPECT_EQ(records.List[1].FileIndex, 2);
    EXPECT_EQ(records.List[1].Alias.View(), "eth1");
    EXPECT_EQ(records.List[1].LogOut, At("2024-03-15 09:01:00"));
    EXPECT_EQ(Load(""), 0);
    EXPECT_TRUE(records.List.empty());
}

TEST_F(StatFileTest, SortsALongFileAsAWhole) {
    const std::string half = Apart(5000);
    EXPECT_EQ(Load(ReplaceAll(half, "eth0", "wlan0") + half), 10'000);
    EXPECT_EQ(Stored(), half + ReplaceAll(half, "eth0", "wlan0"));
    EXPECT_EQ(records.List.front().FileIndex, 5001);
}

TEST_F(StatFileTest, ConvertsTheFileOfOlderReleasesOnce) {
    locale.ShortDate = "dd.mm.yyyy";
    locale.DecimalMark = ",";
    const std::string old = "B\xFCro\t31.12.2004 10:00:00\tunused\t01:00:00\t1,5\t-20\tnote, old\tmore\r\n"
                            "six\t31.12.2004 10:00:00\t\t01:00:00\t1\t2\r\n"
                            "no date\tx\t\t01:00:00\t1\t2\tnote\r\n"
                            "no number\t31.12.2004\t\t01:00:00\tx\t2\tnote\r\n"
                            "eth0\t2004-12-31\t\t0:00\t1\t2\t";
    folder.Write("Korvalin_Stats.txt", old);
    EXPECT_EQ(statFile.LoadStatFile(records, true), 2);
    EXPECT_EQ(folder.Read("Korvalin_Stats.db"),
              "\"Büro\",#2004-12-31 10:00:00#,#01:00:00#,1.5,-20,\"note; old\",\"\"\r\n"
              "\"eth0\",#2004-12-31#,#00:00:00#,1,2,\"\",\"\"\r\n");
    EXPECT_EQ(records.List[0].BytesReceived, 20);
    EXPECT_EQ(folder.Read("Korvalin_Stats.txt"), old);
    EXPECT_EQ(Load(Chain(1), true), 1) << "the newer file alone counts";
    fs::remove(folder / "Korvalin_Stats.db");
    files.DiskFull = true;
    EXPECT_EQ(statFile.LoadStatFile(records, true), 0);
    EXPECT_EQ(TakeBoxes(), Lines{"t208\n" + (folder / "Korvalin_Stats.db").string() + "\n\nt209 t230"});
}

TEST_F(StatFileTest, MergesRecordsOfOneConnection) {
    struct {
        const char* Rule;
        std::string File, Expected;
    } const rows[] = {
        {"the later end survives, from the earlier log-in",
         Line("a", "10:00:00", "00:05:00", 1, "x") + Line("A", "10:00:30", "00:02:00", 2, "y"),
         Line("a", "10:00:00", "00:05:00", 1, "x")},
        {"of equal ends the later log-in's",
         Line("a", "10:00:00", "00:05:00", 1, "x") + Line("A", "10:00:30", "00:04:30", 2, "y"),
         Line("A", "10:00:00", "00:05:00", 2, "y")},
        {"an end right at the log-in, 59 seconds apart",
         Line("a", "10:00:00", "00:00:59", 1) + Line("a", "10:00:59", "01:00:00", 2),
         Line("a", "10:00:00", "01:00:59", 2)},
        {"60 seconds apart", Line("a", "10:00:00", "00:05:00") + Line("a", "10:01:00", "00:02:00"), ""},
        {"ended before", Line("a", "10:00:00", "00:00:29") + Line("a", "10:00:30", "00:02:00"), ""},
        {"another line", Line("a", "10:00:00", "00:05:00") + Line("b", "10:00:00", "00:05:00"), ""},
        {"a chain, in any order of the file",
         Line("a", "10:01:30", "00:01:00", 3) + Line("a", "10:00:00", "00:01:00", 1) +
             Line("a", "10:00:45", "00:09:00", 2),
         Line("a", "10:00:00", "00:09:45", 2)},
        {"not across a gap that only the survivor's log-in leaves",
         Line("a", "10:00:00", "00:01:00", 1) + Line("a", "10:00:50", "00:01:00", 2) +
             Line("a", "10:02:00", "00:01:00", 3) + Line("a", "10:02:00", "00:01:00", 4),
         Line("a", "10:00:00", "00:01:50", 2) + Line("a", "10:02:00", "00:01:00", 4)}};
    for (const auto& row : rows) {
        Load(row.File);
        EXPECT_EQ(Stored(), row.Expected.empty() ? row.File : row.Expected) << row.Rule;
    }
}

TEST_F(StatFileTest, IsRewrittenOnlyWhenWorthIt) {
    const std::string damaged = Apart(2) + "damaged\r\n";
    struct {
        const char* What;
        std::string File;
        bool Repair, Held;
        std::string Expected;
        LoadReport::Hindrance Hindrance = LoadReport::Hindrance::None;
    } const rows[] = {{"25 merges", Chain(26), true, false, ""},
                      {"26 merges", Chain(27), true, false, Line("eth0", "10:00:00", "01:13:00")},
                      {"26 merges, not asked to repair", Chain(27), false, false, ""},
                      {"a damaged line", damaged, true, false, Apart(2)},
                      {"a damaged line, one record", "damaged\r\n" + Apart(1), true, false, Apart(1)},
                      {"no record at all", "damaged\r\n", true, false, "", LoadReport::Hindrance::NoRecords},
                      {"somebody holds the file", damaged, true, true, "", LoadReport::Hindrance::Held}};
    for (const auto& row : rows) {
        files.Held = row.Held;
        files.DurableResult = row.Held ? EAGAIN : 0;
        clock.Advance(1);
        Load(row.File, row.Repair);
        const std::string backup =
            "Korvalin_Stats.db_20240315_" + ReplaceAll(FormatTimeOfDay(clock.Now()), ":", "");
        const bool rewritten = !row.Expected.empty();
        EXPECT_EQ(folder.Read("Korvalin_Stats.db"), rewritten ? row.Expected : row.File) << row.What;
        EXPECT_EQ(folder.Read(backup), rewritten ? row.File : "") << row.What;
        EXPECT_EQ(statFile.Report().NotRewritten, row.Hindrance) << row.What;
        EXPECT_EQ(statFile.Report().Backup, rewritten ? folder / backup : fs::path()) << row.What;
    }
}

TEST_F(StatFileTest, AFullDiskIsReportedAndLeavesTheRecordsLoaded) {
    files.DiskFull = true;
    const std::string content = "damaged\r\n" + Apart(2);
    EXPECT_EQ(Load(content, true), 2);
    EXPECT_EQ(statFile.Report().NotRewritten, LoadReport::Hindrance::DiskFull);
    EXPECT_EQ(folder.Read("Korvalin_Stats.db"), content);
}

TEST_F(StatFileTest, OpenConnectionsAreAddedUnlessTheFileIsRepaired) {
    network.Add("eth0", 5000, 70);
    network.Add("eth1", 6000, 80);
    Pass(60);
    Pass(60);
    const std::string file = Line("eth0", "11:59:30", "00:01:00");
    EXPECT_EQ(Load(file, true), 1);
    EXPECT_EQ(Load(file), 3) << "an open part is never merged with a record";
    EXPECT_EQ(Stored(), file + "\"eth0\",#2024-03-15 11:59:58#,#00:02:00#,70,5000,\"Running\",\"alice\"\r\n"
                               "\"eth1\",#2024-03-15 11:59:58#,#00:02:00#,80,6000,\"Running\",\"alice\"\r\n");
    EXPECT_EQ(records.List[1].FileIndex, 0);
    lines.LineTable(1).IsRas = true;
    EXPECT_EQ(Load(file), 2) << "a dial-up line that was recorded and goes on is one connection";
    book.ForgetLines();
    EXPECT_EQ(Load(file), 1);
}

} // namespace
