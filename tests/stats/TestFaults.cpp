// The statistics file on a real file system, under everything that can happen to it.
#include "StatsFixture.h"
#include "fakes/ChildProcess.h"
#include "platform/linux/files/PosixFiles.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <poll.h>
#include <random>
#include <sys/stat.h>
#include <thread>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

class StatFaults : public StatsFixture {
  protected:
    // Records of one line, an hour apart; the number is what they have received.
    static std::string Numbered(int number) {
        return Line("eth0", FormatDateIso(DateSerial(2020, 1, 1) + (number + 0.5) / 24), "00:00:30", number);
    }
    static std::string NumberedUpTo(int count) {
        std::string content;
        for (int i = 1; i <= count; ++i)
            content += Numbered(i);
        return content;
    }
    int AppendLines(const std::string& line) {
        return posix.AppendLines(folder / "Korvalin_Stats.db", "", line, "\r\n", Files::Flush::Yes);
    }
    // Runs `body` in another process and kills it after a part of `whole`.
    template <typename Body>
    static void KillAfter(Clock::duration whole, double part, Body&& body) {
        ChildProcess process(std::forward<Body>(body));
        std::this_thread::sleep_for(part * whole); // chooses the moment, waits for nothing
        process.Kill();
    }
    Lines Backups() const {
        Lines contents;
        for (const auto& entry : fs::directory_iterator(folder.Path())) {
            const std::string name = entry.path().filename();
            if (name.starts_with("Korvalin_Stats.db_")) contents.push_back(folder.Read(name));
        }
        return contents;
    }
    std::string File() const { return folder.Read("Korvalin_Stats.db"); }

    PosixFiles posix;
    StatFile stats{{.DataFolder = dataFolder,
                    .Files = posix,
                    .Events = events,
                    .Clock = clock,
                    .Errors = errors,
                    .OpenConnections = openConnections,
                    .Aliases = aliases,
                    .Locale = locale}};
};

TEST_F(StatFaults, ARepairThatIsKilledLosesAndDoublesNothing) {
    const std::string clean = NumberedUpTo(2000);
    const std::string damaged = "damaged\r\n" + clean + "damaged\r\n\r\n" + NumberedUpTo(10);
    const auto repair = [&] { stats.LoadStatFile(records, true); };
    const auto begin = Clock::now();
    folder.Write("Korvalin_Stats.db", damaged);
    ChildProcess(repair).Finish();
    const auto whole = Clock::now() - begin;
    EXPECT_EQ(File(), clean);

    constexpr int runs = 60;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> jitter(0, 1.3 / runs);
    for (int run = 0; run < runs; ++run) {
        for (const auto& entry : fs::directory_iterator(folder.Path())) {
            if (entry.is_regular_file()) fs::remove(entry.path());
        }
        folder.Write("Korvalin_Stats.db", damaged);
        KillAfter(whole, 1.3 * run / runs + jitter(random), repair);
        const std::string left = File();
        ASSERT_TRUE(left == damaged || left == clean) << "half a file";
        ASSERT_TRUE(left == damaged || Backups() == Lines{damaged}) << "the old file is gone";
        ASSERT_EQ(stats.LoadStatFile(records, true), 2000);
        ASSERT_EQ(Stored(), clean);
        ASSERT_EQ(File(), clean);
        ASSERT_FALSE(fs::exists(folder / "Korvalin_Stats.db.new"));
    }
}

TEST_F(StatFaults, ADeletionThatIsKilledLosesAndDoublesNothing) {
    constexpr int count = 4000;
    const std::string before = NumberedUpTo(count);
    const std::string appended = Numbered(count + 1); // since the load
    std::string after;
    for (int i = 1; i <= count; ++i) {
        if (i % 2 != 0) after += Numbered(i);
    }
    folder.Write("Korvalin_Stats.db", before);
    ASSERT_EQ(stats.LoadStatFile(records, false), count);
    ASSERT_EQ(AppendLines(appended), 0);
    std::vector<std::uint32_t> evens;
    for (std::uint32_t i = 1; i < count; i += 2)
        evens.push_back(i);
    const auto deletion = [&] { ASSERT_EQ(stats.DeleteRecords(records, evens), StatFile::Deletion::Done); };
    const auto begin = Clock::now();
    ChildProcess(deletion).Finish();
    const auto whole = Clock::now() - begin;
    ASSERT_EQ(File(), after + appended);

    constexpr int runs = 60;
    for (int run = 0; run < runs; ++run) {
        fs::remove(folder / "Korvalin_Stats.db"); // the backup is a second name of the one before
        for (const auto& entry : fs::directory_iterator(folder.Path())) {
            if (entry.path().filename().string().starts_with("Korvalin_Stats.db_")) fs::remove(entry.path());
        }
        folder.Write("Korvalin_Stats.db", before + appended);
        KillAfter(whole, 1.2 * run / runs, deletion);
        const std::string left = File();
        const bool isOld = left == before + appended;
        ASSERT_TRUE(isOld || left == after + appended) << "half a file";
        ASSERT_TRUE(isOld || Backups() == Lines{before + appended}) << "the old file is gone";
        // What was left half done is no hindrance, neither to the recorder nor to another try.
        ASSERT_EQ(AppendLines(Numbered(count + 2)), 0);
        ASSERT_EQ(File(), left + Numbered(count + 2));
    }
    folder.Write("Korvalin_Stats.db", before);
    ChildProcess(deletion).Finish();
    EXPECT_EQ(File(), after);
    EXPECT_FALSE(fs::exists(folder / "Korvalin_Stats.db.new"));
}

TEST_F(StatFaults, WhatWasRecordedBeforeAKillIsThereOnce) {
    int acknowledged = 0;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> part(0, 1);
    for (int run = 0; run < 30; ++run) {
        Signal written;
        KillAfter(std::chrono::milliseconds(40), part(random), [&] {
            for (int number = acknowledged + 1; AppendLines(Numbered(number)) == 0; ++number)
                written.Send(number);
        });
        written.CloseWriteEnd();
        int word = 0;
        while (read(written.ReadEnd(), &word, sizeof word) == sizeof word)
            acknowledged = word;
        const int loaded = stats.LoadStatFile(records, true);
        ASSERT_TRUE(loaded == acknowledged || loaded == acknowledged + 1) << loaded << " of " << acknowledged;
        ASSERT_EQ(Stored(), NumberedUpTo(loaded));
        ASSERT_EQ(stats.Report().Dropped, 0U);
        acknowledged = loaded; // a kill between the write and its notice
        // What a power cut leaves of the next record damages no other one.
        std::ofstream(folder / "Korvalin_Stats.db", std::ios::app) << Numbered(loaded + 1).substr(0, 20);
        ASSERT_EQ(AppendLines(Numbered(++acknowledged)), 0);
        ASSERT_EQ(stats.LoadStatFile(records, true), acknowledged);
    }
}

TEST_F(StatFaults, ProgramsThatAppendAtOnceWriteWholeLines) {
    constexpr int each = 200;
    const auto append = [&](int first) {
        for (int i = 0; i < each; ++i)
            ASSERT_EQ(AppendLines(Numbered(first + i)), 0);
    };
    ChildProcess one([&] { append(1); });
    ChildProcess two([&] { append(1 + each); });
    one.Finish();
    two.Finish();
    EXPECT_EQ(stats.LoadStatFile(records, false), 2 * each);
    EXPECT_EQ(Stored(), NumberedUpTo(2 * each));
    EXPECT_EQ(stats.Report().Dropped, 0U);
}

TEST_F(StatFaults, NothingAppendedDuringRepairsIsLost) {
    constexpr int count = 300;
    ASSERT_EQ(AppendLines(Numbered(1)), 0);
    Signal done;
    ChildProcess recorder([&] {
        for (int i = 2; i <= count; ++i)
            ASSERT_EQ(AppendLines(Numbered(i)), 0);
        done.Send();
    });
    pollfd end{done.ReadEnd(), POLLIN, 0};
    int repairs = 0;
    do {
        ASSERT_TRUE(posix.Append(folder / "Korvalin_Stats.db", "damaged\r\n"));
        clock.Advance(1);
        stats.LoadStatFile(records, true);
        if (!stats.Report().Backup.empty()) ++repairs;
    } while (poll(&end, 1, 0) == 0 || repairs == 0);
    recorder.Finish();
    EXPECT_EQ(stats.LoadStatFile(records, false), count);
    EXPECT_EQ(Stored(), NumberedUpTo(count));
}

TEST_F(StatFaults, AFileThatShrinksWhileItIsReadIsNotRewritten) {
    const std::string content = "damaged\r\n" + NumberedUpTo(10'000); // several blocks
    const std::string shorter = content.substr(0, 5000);
    folder.Write("Korvalin_Stats.db", content);
    events.OnProcessPending = [&] { fs::resize_file(folder / "Korvalin_Stats.db", shorter.size()); };
    const int loaded = stats.LoadStatFile(records, true);
    EXPECT_GT(loaded, 1000);
    EXPECT_LT(loaded, 10'000);
    EXPECT_EQ(File(), shorter);
}

TEST_F(StatFaults, AGigabyteWithoutALineEndIsOneDamagedLine) {
    const fs::path path = folder.Write("Korvalin_Stats.db", Numbered(1) + "damaged");
    fs::resize_file(path, 1 << 30);
    ASSERT_EQ(AppendLines(Numbered(2)), 0);
    EXPECT_EQ(stats.LoadStatFile(records, true), 2);
    EXPECT_EQ(stats.Report().Dropped, 1U);
    EXPECT_EQ(File(), NumberedUpTo(2));
}

TEST_F(StatFaults, WhatCannotBeReadIsReportedAndLeftAlone) {
    const fs::path path = folder / "Korvalin_Stats.db";
    const std::function<void()> obstacles[] = {
        [&] { fs::create_directory(path); }, [&] { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); },
        [&] { fs::permissions(folder.Write("Korvalin_Stats.db", "damaged"), fs::perms::none); }};
    for (const auto& obstacle : obstacles) {
        obstacle();
        {
            const WithoutRoot somebody;
            EXPECT_EQ(stats.LoadStatFile(records, true), 0);
        }
        EXPECT_EQ(TakeBoxes().size(), 1U);
        EXPECT_TRUE(fs::remove(path));
        clock.Advance(5);
    }
    EXPECT_TRUE(Backups().empty());
}

} // namespace
