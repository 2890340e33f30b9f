// Several runs of the program, one after the other and beside each other, under what EveryByte's machine does
// not do to them: each byte is in one record.
#include "RunFixture.h"

using namespace korvalin;

namespace {

class Runs : public RunFixture {
  protected:
    std::unique_ptr<ProgramRun> Start(bool anotherRecords = false) {
        auto run = std::make_unique<ProgramRun>(*this, files, journal);
        run->trafficOptions = options;
        run->Lock.AnotherRecords = anotherRecords;
        run->BeginToRecord();
        return run;
    }
    /// A run that has seen eth0 with its counter at 5000.
    std::unique_ptr<ProgramRun> StartWithAdapter() {
        network.Add("eth0", 5000, 0);
        auto run = Start();
        Pass(*run);
        return run;
    }
    void Count(std::uint64_t received) { network.Rows.at(0).InOctets = received; }
    static void End(ProgramRun& run) { run.journalKeeper.RecordOpenLines(CloseReason::SystemEnd); }

    void Dial(std::int32_t handle, std::uint64_t own, std::uint64_t raw) {
        internet.State = {true, InternetConnectionModem | InternetRasInstalled};
        FakeRas::Line line;
        line.Connection = {handle, "ISP", "ppp0"};
        line.Statistics.InterfaceIndex = 9;
        line.Statistics.Counts64Bits = true;
        ras.Lines = {line};
        network.Rows = {{9, IfTypePpp, OperationalStatus::Operational, 0, 0, true, "ppp0", "", false}};
        CountCall(own, raw);
    }
    void CountCall(std::uint64_t own, std::uint64_t raw) {
        Count(raw);
        // The service has told since noon.
        const double upDays = clock.Now() - At("2024-03-15 12:00:00");
        ras.Lines.at(0).Statistics.ConnectDurationMilliseconds =
            static_cast<std::uint64_t>(upDays * SecondsPerDay * 1000);
        ras.Lines.at(0).Statistics.BytesReceived = own;
        ras.Lines.at(0).Statistics.RawReceived = raw;
    }
    using Days = std::map<std::string, double>;
    // Received bytes of the records as a load finds them, by the day in which they end.
    Days Recorded() {
        StatRecords loaded;
        statFile.LoadStatFile(loaded, true);
        Days sums;
        for (const StatRecord& record : loaded.List)
            sums[FormatDateIso(DayOf(record.End())).substr(5, 5)] += record.BytesReceived;
        return sums;
    }
    std::string File() const { return folder.Read("Korvalin_Stats.db"); }
};

TEST_F(Runs, AModemsConnectionGoesOnInTheRunThatTakesOver) {
    internet.State = {true, InternetConnectionLan | InternetRasInstalled};
    auto first = Start();
    auto second = Start(true);
    const auto passes = [&] {
        Pass(*first);
        Pass(*second);
    };
    passes();
    Dial(7, 0, 10'000); // the port has counted for an earlier connection
    passes();
    CountCall(2000, 12'000);
    passes();
    End(*first);
    first.reset();
    second->Lock.AnotherRecords = false;
    Pass(*second);
    CountCall(2500, 12'500);
    Pass(*second);
    End(*second);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 2500}}));
}

TEST_F(Runs, AnEarlierConnectionOfAModemIsNotCountedAgainAfterACancelledEnd) {
    Dial(7, 10'000, 10'000);
    journal.KnowsMachine = true;
    journal.Kept.Entries = {{9, "ppp0", 10'000, 0, clock.Now(), {}}};
    const auto run = Start();
    Pass(*run);
    for (const std::uint64_t bytes : {10'500U, 10'700U}) {
        CountCall(bytes, bytes);
        Pass(*run);
        End(*run);
        Pass(*run);
    }
    EXPECT_EQ(Recorded(), (Days{{"03-15", 700}}));
}

TEST_F(Runs, AModemsLastSecondIsRecorded) {
    for (const bool interfaceGoesToo : {true, false}) {
        std::filesystem::remove(folder / "Korvalin_Stats.db");
        journal = FakeJournal();
        const auto run = Start();
        Dial(3, 100, 100);
        Pass(*run);
        CountCall(1000, 1000);
        Pass(*run);
        CountCall(1500, 1500);
        ras.Lines.clear();
        if (interfaceGoesToo) network.Removed = std::exchange(network.Rows, {});
        Pass(*run);
        Pass(*run);
        EXPECT_EQ(Recorded(), (Days{{"03-15", 1500}})) << interfaceGoesToo << File();
    }
}

TEST_F(Runs, ALineThatComesInADaysLastSecondIsRecordedInThatDay) {
    clock.SetWallClock(At("2024-03-15 23:59:49"));
    const auto run = StartWithAdapter();
    End(*run);
    clock.Advance(9.2);
    run->counterLedger.NoteEnd("eth0", At("2024-03-15 23:59:59"));
    Count(5300);
    Pass(*run, 0.2);
    Pass(*run);
    End(*run);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 300}, {"03-16", 0}})) << File();
}

TEST_F(Runs, AnAdapterThatLeftAndCameBackBetweenTwoLooksGoesOn) {
    const auto run = StartWithAdapter();
    network.Removed = {network.Rows[0]};
    Count(5700);
    Pass(*run);
    End(*run);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 700}}));
}

TEST_F(Runs, ATableThatCannotBeReadEndsNoAdapterOnceMore) {
    network.Add("eth1", 5000, 0);
    const auto run = StartWithAdapter();
    network.Removed = {network.Rows[0]};
    network.Removed[0].InOctets = 5700;
    network.Rows.erase(network.Rows.begin());
    Pass(*run);
    network.Throws = true;
    Pass(*run);
    End(*run);
    EXPECT_EQ(TakeBoxes().size(), 3U) << "the failure is reported";
    EXPECT_EQ(Recorded(), (Days{{"03-15", 700}}));
}

TEST_F(Runs, TheJournalFollowsTheDataAtTheNextPass) {
    const auto run = StartWithAdapter();
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
    std::filesystem::create_directory(folder / "Korvalin_Stats.csv"); // takes no lines
    const auto run = StartWithAdapter();
    Count(7000);
    Pass(*run);
    End(*run);
    ASSERT_EQ(run->recorder.Pending().size(), 1U);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 2000}}));
    TakeBoxes();
    folder.Write("Korvalin_Stats.db", ""); // the user has deleted the record
    std::filesystem::remove(folder / "Korvalin_Stats.csv");
    End(*Start());
    EXPECT_EQ(File(), "");
    EXPECT_NE(folder.Read("Korvalin_Stats.csv").find("\neth0,"), std::string::npos);
}

TEST_F(Runs, ANetworkIsCalledAsItsRecordsAre) {
    network.Add("wlan0", 5000, 0);
    networks.Names["wlan0"] = "My \"5G\"\nnet";
    const auto run = Start();
    Pass(*run);
    EXPECT_EQ(run->lines.LineTable(1).EntryName, "My '5G' net");
    Count(7000);
    Pass(*run);
    End(*run);
    EXPECT_TRUE(File().starts_with("\"My '5G' net\",")) << File();
}

TEST_F(Runs, WhatAnEndCannotWriteIsPrintedAndRecordedByTheNextStart) {
    auto run = StartWithAdapter();
    Count(6000);
    Pass(*run);
    Count(7000);
    journal.Fails = true; // the whole folder is read-only
    files.DurableResult = EROFS;
    testing::internal::CaptureStderr();
    End(*run);
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_NE(told.find("\"eth0\",#2024-03-15 11:59:58#"), std::string::npos) << told;
    EXPECT_EQ(TakeBoxes().size(), 1U);
    journal.Fails = false;
    files.DurableResult = 0;
    run = Start();
    End(*run);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 2000}})) << File();
}

TEST_F(Runs, AJournalThatIsBusyAtTheStartIsTakenUpWhenItCanBeRead) {
    auto run = StartWithAdapter();
    Count(6000);
    Pass(*run);
    run.reset(); // killed
    Count(7000);
    journal.IsUnreadable = true;
    run = Start();
    Pass(*run);
    EXPECT_EQ(File(), "");
    journal.IsUnreadable = false;
    Pass(*run, 5);
    Count(8000);
    Pass(*run);
    End(*run);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 3000}})) << File();
}

TEST_F(Runs, AJournalThatStaysUnreadableDoesNotKeepLinesFromBeingRecorded) {
    journal.IsUnreadable = true;
    const auto run = StartWithAdapter();
    for (int second = 0; second <= 65; ++second)
        Pass(*run);
    Count(6000);
    End(*run);
    EXPECT_EQ(Recorded(), (Days{{"03-15", 1000}})) << File();
}

} // namespace
