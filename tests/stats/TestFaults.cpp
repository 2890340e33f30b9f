// The statistics file on a real file system, under everything that can happen to it.
#include "StatsFixture.h"
#include "fakes/ChildProcess.h"
#include "platform/linux/files/PosixFiles.h"

#include <chrono>
#include <cstdlib>
#include <poll.h>
#include <random>
#include <sys/stat.h>
#include <thread>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

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
        return posix.AppendLines(folder / "Korvalin_Stats.db", "", line, "\r\n", Files::Flush::Yes,
                                 Files::Wait::ForRewrite);
    }
    std::string File() const { return folder.Read("Korvalin_Stats.db"); }

    PosixFiles posix;
    StatFile stats{FileOn(posix)};
};

TEST_F(StatFaults, WhatWasRecordedBeforeAKillIsThereOnce) {
    int acknowledged = 0;
    std::mt19937 random(7);
    std::uniform_int_distribution<int> milliseconds(0, 40);
    for (int run = 0; run < 30; ++run) {
        Signal written;
        ChildProcess writer([&] {
            for (int number = acknowledged + 1; AppendLines(Numbered(number)) == 0; ++number)
                written.Send(number);
        });
        std::this_thread::sleep_for(
            std::chrono::milliseconds(milliseconds(random))); // chooses the moment, waits for nothing
        writer.Kill();
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
    EXPECT_TRUE(stats.Report().Backup.empty());
}

} // namespace
