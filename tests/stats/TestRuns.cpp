// Several runs of the program, one after the other and beside each other: each byte is in one record.
#include "RunFixture.h"

using namespace korvalin;

namespace {

class Runs : public RunFixture {
  protected:
    using Run = ProgramRun;

    void SetUp() override { journal.SpareFolder = spare.Path(); }

    std::unique_ptr<Run> Start(bool anotherRecords = false) {
        auto run = std::make_unique<Run>(*this, files, journal);
        run->Lock.AnotherRecords = anotherRecords;
        run->Keeper.Start();
        return run;
    }
    void Pass(Run& run, double secondsLater = 1) {
        clock.Advance(secondsLater);
        run.Monitor.Get_Bytes_Transmitted();
    }
    void Dial(std::int32_t handle, std::uint64_t own, std::uint64_t raw) {
        internet.State = {true, InternetConnectionModem | InternetRasInstalled};
        FakeRas::Line line;
        line.Connection = {handle, "ISP", "ppp0"};
        line.Statistics.InterfaceIndex = 9;
        line.Statistics.Counts64Bits = true;
        ras.Lines = {line};
        network.Rows = {{9, IfTypePpp, OperationalStatus::Operational, 0, 0, true, "ppp0", "", false}};
        Count(own, raw);
    }
    void Count(std::uint64_t own, std::uint64_t raw) {
        network.Rows.at(0).InOctets = raw;
        // The service has told since noon.
        const double upDays = clock.Now() - At("2024-03-15 12:00:00");
        ras.Lines.at(0).Statistics.ConnectDurationMilliseconds =
            static_cast<std::uint64_t>(upDays * SecondsPerDay * 1000);
        ras.Lines.at(0).Statistics.BytesReceived = own;
        ras.Lines.at(0).Statistics.RawReceived = raw;
    }
    // Received bytes of the records as a load finds them, by the day in which they end.
    std::map<std::string, double> Recorded() {
        StatRecords loaded;
        statFile.LoadStatFile(loaded, true);
        std::map<std::string, double> sums;
        for (const StatRecord& record : loaded.List)
            sums[FormatDateIso(DayOf(record.End())).substr(5, 5)] += record.BytesReceived;
        return sums;
    }
    using Days = std::map<std::string, double>;
};

TEST_F(Runs, OneThatLooksOnRecordsNothingBeforeItHasTakenOver) {
    network.Add("eth0", 5000, 0);
    auto first = Start();
    Pass(*first);
    auto second = Start(true);
    Pass(*second);
    network.Rows[0].InOctets = 7000;
    Pass(*first);
    Pass(*second);
    first->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    first.reset();
    second->Lock.AnotherRecords = false;
    network.Rows[0].OperStatus = OperationalStatus::Disconnected;
    Pass(*second);
    second->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 2000}}));
}

TEST_F(Runs, WhatOneThatLookedOnHasSeenIsNotInTheJournal) {
    network.Add("eth0", 5000, 0);
    auto first = Start();
    Pass(*first);
    auto second = Start(true);
    network.Rows[0].InOctets = 7000;
    Pass(*first);
    Pass(*second);
    first.reset(); // killed
    second->Lock.AnotherRecords = false;
    Pass(*second);
    second.reset(); // killed as well
    auto third = Start();
    third->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 2000}}));
}

TEST_F(Runs, AModemsConnectionGoesOnInTheRunThatTakesOver) {
    internet.State = {true, InternetConnectionLan | InternetRasInstalled};
    auto first = Start();
    Pass(*first);
    auto second = Start(true);
    Pass(*second);
    Dial(7, 0, 10'000); // the port has counted for an earlier connection
    Pass(*first);
    Pass(*second);
    Count(2000, 12'000);
    Pass(*first);
    Pass(*second);
    first->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    first.reset();
    second->Lock.AnotherRecords = false;
    Pass(*second);
    Count(2500, 12'500);
    Pass(*second);
    second->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 2500}}));
}

TEST_F(Runs, DialUpPartsOfDaysStayInTheirDaysOverEnds) {
    options.Split = SplitDays::All;
    // A kill, an end, an end that is cancelled; how many seconds until the next run.
    for (const char* how : {"kill", "end", "cancelled"}) {
        for (const double pause : {1.0, 86400.0}) {
            std::filesystem::remove(folder / "Korvalin_Stats.db");
            journal = FakeJournal();
            clock = FakeClock();
            Dial(7, 0, 0);
            auto run = Start();
            Pass(*run);
            Count(100, 100);
            Pass(*run);
            clock.Advance(86400 - 2);
            Count(1000, 1000);
            Pass(*run); // the first day's part ends
            Count(3000, 3000);
            Pass(*run);
            if (how == std::string("cancelled") && pause > 1) continue;
            if (how != std::string("kill")) run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
            clock.Advance(pause);
            if (how != std::string("cancelled")) run = Start();
            Pass(*run);
            Count(7000, 7000);
            Pass(*run);
            run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
            const Days expected = pause < 100 ? Days{{"03-15", 100}, {"03-16", 6900}}
                                              : Days{{"03-15", 100}, {"03-16", 2900}, {"03-17", 4000}};
            EXPECT_EQ(Recorded(), expected) << how << " " << pause << "\n"
                                            << folder.Read("Korvalin_Stats.db");
        }
    }
}

TEST_F(Runs, AnEarlierConnectionOfAModemIsNotCountedAgainAfterACancelledEnd) {
    Dial(7, 10'000, 10'000);
    journal.KnowsMachine = true;
    journal.Kept.Entries = {{9, "ppp0", 10'000, 0, clock.Now(), {}}};
    auto run = Start();
    Pass(*run);
    Count(10'500, 10'500);
    Pass(*run);
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    Pass(*run);
    Count(10'700, 10'700);
    Pass(*run);
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 700}}));
}

TEST_F(Runs, ALineThatComesInADaysLastSecondIsRecordedInThatDay) {
    clock.SetWallClock(At("2024-03-15 23:59:50"));
    network.Add("eth0", 5000, 0);
    auto run = Start();
    Pass(*run, 0);
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    clock.Advance(9.2);
    run->Ledger.NoteEnd("eth0", At("2024-03-15 23:59:59"));
    network.Rows[0].InOctets = 5300;
    Pass(*run, 0.2);
    Pass(*run, 1);
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 300}, {"03-16", 0}})) << folder.Read("Korvalin_Stats.db");
}

TEST_F(Runs, AnAdapterThatLeftAndCameBackBetweenTwoLooksGoesOn) {
    network.Add("eth0", 5000, 0);
    auto run = Start();
    Pass(*run);
    network.Removed = {network.Rows[0]};
    network.Rows[0].InOctets = 5700;
    Pass(*run);
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 700}}));
}

TEST_F(Runs, ATableThatCannotBeReadEndsNoAdapterOnceMore) {
    network.Add("eth0", 5000, 0);
    network.Add("eth1", 5000, 0);
    auto run = Start();
    Pass(*run);
    network.Removed = {network.Rows[1]};
    network.Removed[0].InOctets = 5700;
    network.Rows.pop_back();
    Pass(*run);
    network.Throws = true;
    Pass(*run);
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(TakeBoxes().size(), 3U) << "the failure is reported";
    EXPECT_EQ(Recorded(), (Days{{"03-15", 700}}));
}

TEST_F(Runs, TheJournalFollowsTheDataAtTheNextPass) {
    network.Add("eth0", 5000, 0);
    const auto run = Start();
    Pass(*run);
    const int saves = journal.Saves;
    Pass(*run);
    EXPECT_EQ(journal.Saves, saves) << "nothing has changed";
    const std::filesystem::path elsewhere = folder / "elsewhere/";
    std::filesystem::create_directories(elsewhere);
    settings.SetReg("DataPath", elsewhere.string());
    Pass(*run);
    EXPECT_EQ(journal.Saves, saves + 1);
    EXPECT_EQ(journal.Folder, elsewhere);
}

TEST_F(Runs, ARecordThatOnlyItsExportLacksIsNotWrittenAgain) {
    network.Add("eth0", 5000, 0);
    std::filesystem::create_directory(folder / "Korvalin_Stats.csv"); // takes no lines
    auto run = Start();
    Pass(*run);
    network.Rows[0].InOctets = 7000;
    Pass(*run);
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    ASSERT_EQ(run->Record.Pending().size(), 1U);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 2000}}));
    TakeBoxes();
    folder.Write("Korvalin_Stats.db", ""); // the user has deleted the record
    std::filesystem::remove(folder / "Korvalin_Stats.csv");
    Start()->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(folder.Read("Korvalin_Stats.db"), "");
    EXPECT_NE(folder.Read("Korvalin_Stats.csv").find("\neth0,"), std::string::npos);
}

TEST_F(Runs, ANetworkIsCalledAsItsRecordsAre) {
    network.Add("wlan0", 5000, 0);
    networks.Names["wlan0"] = "My \"5G\"\nnet";
    auto run = Start();
    Pass(*run);
    EXPECT_EQ(run->State.LineTable(1).EntryName, "My '5G' net");
    network.Rows[0].InOctets = 7000;
    Pass(*run);
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    StatRecords loaded;
    statFile.LoadStatFile(loaded, false);
    ASSERT_EQ(loaded.List.size(), 1U);
    EXPECT_EQ(std::string(loaded.List[0].LineName), "My '5G' net");
}

TEST_F(Runs, WhatAnEndCannotWriteIsPrintedAndRecordedByTheNextStart) {
    network.Add("eth0", 5000, 0);
    auto run = Start();
    Pass(*run);
    network.Rows[0].InOctets = 6000;
    Pass(*run);
    network.Rows[0].InOctets = 7000;
    journal.Fails = true; // the whole folder is read-only
    files.DurableResult = EROFS;
    testing::internal::CaptureStderr();
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_NE(told.find("\"eth0\",#2024-03-15 11:59:58#"), std::string::npos) << told;
    journal.Fails = false;
    files.DurableResult = 0;
    run = Start();
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 2000}})) << folder.Read("Korvalin_Stats.db");
}

TEST_F(Runs, AJournalThatIsBusyAtTheStartIsTakenUpWhenItCanBeRead) {
    network.Add("eth0", 5000, 0);
    auto run = Start();
    Pass(*run);
    network.Rows[0].InOctets = 6000;
    Pass(*run);
    run.reset(); // killed
    network.Rows[0].InOctets = 7000;
    journal.IsUnreadable = true;
    run = Start();
    Pass(*run);
    EXPECT_EQ(folder.Read("Korvalin_Stats.db"), "");
    journal.IsUnreadable = false;
    Pass(*run, 5);
    network.Rows[0].InOctets = 8000;
    Pass(*run);
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 3000}})) << folder.Read("Korvalin_Stats.db");
}

TEST_F(Runs, AJournalThatStaysUnreadableDoesNotKeepLinesFromBeingRecorded) {
    network.Add("eth0", 5000, 0);
    journal.IsUnreadable = true;
    auto run = Start();
    for (int second = 0; second <= 65; ++second)
        Pass(*run);
    network.Rows[0].InOctets += 1000;
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 1000}})) << folder.Read("Korvalin_Stats.db");
}

TEST_F(Runs, AModemsLastSecondIsRecorded) {
    struct {
        const char* How;
        bool WasRemoved;
    } const rows[] = {{"its interface went with it", true}, {"its interface stays", false}};
    for (const auto& row : rows) {
        std::filesystem::remove(folder / "Korvalin_Stats.db");
        journal = FakeJournal();
        auto run = Start();
        Dial(3, 100, 100);
        Pass(*run);
        Count(1000, 1000);
        Pass(*run);
        Count(1500, 1500);
        ras.Lines.clear();
        if (row.WasRemoved) network.Removed = std::exchange(network.Rows, {});
        Pass(*run);
        Pass(*run);
        EXPECT_EQ(Recorded(), (Days{{"03-15", 1500}})) << row.How << folder.Read("Korvalin_Stats.db");
    }
}

TEST_F(Runs, WithoutAnyJournalAnEndIsRecordedAllTheSame) {
    network.Add("eth0", 5000, 0);
    journal.Fails = true;
    auto run = Start();
    Pass(*run);
    network.Rows[0].InOctets = 7000;
    run->Keeper.RecordOpenLines(CloseReason::SystemEnd);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 2000}})) << folder.Read("Korvalin_Stats.db");
}

} // namespace
