#include "base/Text.h"
#include "inet/UpdateFixture.h"

#include <fmt/format.h>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

const std::string release = "Newest Release: 9.4.1 of 1 May<";
const std::string offer = release + "Upgradable Ax9.4.1-setup.exe Vx9.4.1-setup.exe <ENG:1.3<";

class UpdateCheckTest : public UpdateFixture {
  protected:
    UpdateCheckTest() {
        internet.State = {true, InternetConnectionLan};
        PutUpdate(offer);
    }
    /// The offer again, as long after everything that holds a check back, and as if nothing had been taken.
    void BeginAnew() {
        PutUpdate(offer);
        settings.SetReg("UpdateNext", Date(0));
        settings.SetReg("UpdateTaken", "");
        shell.Started.clear();
    }
};

TEST_F(UpdateCheckTest, BringsKeepsAndStartsTheNewVersion) {
    boxes.Answers = {MessageAnswer::Yes};
    EXPECT_EQ(OnDemand(), 9);
    EXPECT_EQ(Asked(), (Lines{ownPage, "setup.exe", "Korvalin.lng"}));
    EXPECT_EQ(shell.Pages, Lines{siteAddress + "versions.html"});
    EXPECT_EQ(boxes.Shown.front().Icon, MessageIcon::Question);
    EXPECT_EQ(
        TakeBoxes(),
        (Lines{"A newer version of Korvalin is available. Download and install version 9.4.1 of 1 May now?",
               "The new version will now start and complete the update."}));
    EXPECT_EQ(TakeStatuses(),
              (Lines{"Reading version information …", "Newest release: 9.4.1 of 1 May – comparing versions …",
                     "Downloading: Korvalin_new.exe", "Downloading: KorvalinLng_new.lng (1.3)",
                     "All files have been downloaded."}));
    EXPECT_EQ(fs::status(newProgram).permissions() & fs::perms(0755), fs::perms(0755));
    EXPECT_EQ(fs::status(programFolder / NewLanguageFileName).permissions() & fs::perms(0755),
              fs::perms(0644));
    EXPECT_EQ(folder.Read("program/KorvalinLng_new.lng"), newTexts);
    const std::string version = "_V" + ReplaceAll(Program::Version().Numbers(), ".", "_");
    EXPECT_EQ(folder.Read("program/Korvalin" + version + ".exe"), "the running program");
    EXPECT_EQ(folder.Read("program/KorvalinLng" + version + ".txt"), folder.Read("program/Korvalin.lng"));
    EXPECT_EQ(shell.Started, std::vector<fs::path>{newProgram});
    EXPECT_EQ(NewFiles(), (Lines{NewLanguageFileName, NewProgramFileName}));
    EXPECT_EQ(Log(), "");
}

TEST_F(UpdateCheckTest, TakesAnOfferOnlyOnceByItselfAndSaysSo) {
    EXPECT_EQ(Automatic(), 9);
    EXPECT_EQ(settings.Get(Keys::UpdateTaken), "9.4.1");
    settings.SetReg("UpdateNext", Date(0));
    const std::pair<const char*, std::string> notices[] = {
        {"waits to be installed", "installed at the next start of Korvalin. (9.4.1)"},
        {"came as the same old version",
         "Korvalin is still the old one. It is not installed by itself again."}};
    for (const auto& [what, notice] : notices) {
        EXPECT_EQ(Automatic(), 5) << what;
        UseSite(siteAddress);
        EXPECT_NE(program->updateCheck.Notice().find(notice), std::string::npos) << "also after a new start";
        fs::remove(newProgram);
    }
    EXPECT_EQ(shell.Started.size(), 1U);
    EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), DayOf(clock.Now()));
    EXPECT_NE(Log().find("9.4.1 was installed before"), std::string::npos);
    boxes.Answers = {MessageAnswer::Yes};
    EXPECT_EQ(OnDemand(), 9) << "who asks for it gets it";
    boxes.Shown.clear();
    PutUpdate(release + "Upgradable Ax9.4.2-setup.exe");
    settings.SetReg("UpdateNext", Date(0));
    EXPECT_EQ(Automatic(), 9);
    PutUpdate(release + "Upgradable Ax" + Program::Version().Numbers() + "-setup.exe");
    settings.SetReg("UpdateNext", Date(0));
    EXPECT_EQ(Automatic(), 8);
    EXPECT_EQ(program->updateCheck.Notice(), "");
}

TEST_F(UpdateCheckTest, WaitsByItselfUntilTheUserIsFree) {
    const std::string isReady = "The new version is ready and waits until all other windows are closed.";
    struct {
        const char* What;
        bool ByItself, WhileItStarts;
        std::string Waits; ///< the status
    } const rows[] = {
        {"before it is started", true, false, isReady},
        {"when a window was opened meanwhile", true, true, isReady},
        {"before the question", false, false,
         "A newer version is available. The question about it waits until all other windows are "
         "closed."}};
    for (const auto& row : rows) {
        BeginAnew();
        settings.SetReg("AutoUpdate", row.ByItself);
        boxes.Answers = {MessageAnswer::Yes};
        int looks = 0;
        userIsBusy = [&] {
            const bool isBusy = shell.Started.empty() != row.WhileItStarts && ++looks < 5;
            EXPECT_TRUE(!isBusy || boxes.Shown.empty()) << row.What;
            return isBusy;
        };
        std::string waits;
        events.OnProcessPending = [&] {
            if (program->updateCheck.IsWaiting()) waits = program->updateCheck.Notice();
        };
        EXPECT_EQ(Automatic(), 9) << row.What;
        EXPECT_EQ(waits, row.Waits) << row.What;
        EXPECT_GE(looks, 5) << row.What;
        TakeBoxes();
    }
    settings.SetReg("AutoUpdate", true);
    for (const bool isStarted : {false, true}) {
        BeginAnew();
        userIsBusy = [&] { return shell.Started.empty() != isStarted; };
        events.OnProcessPending = [&] {
            if (program->updateCheck.IsWaiting()) program->updateCheck.Cancel();
        };
        EXPECT_EQ(Automatic(), 5);
        EXPECT_EQ(NewFiles(), Lines{}) << "the new program finds that it is not wanted";
        EXPECT_EQ(settings.Get(Keys::UpdateTaken), "");
    }
    userIsBusy = [] { return true; };
    BeginAnew();
    events.OnProcessPending = [&] {
        if (!program->updateCheck.IsWaiting()) return;
        EXPECT_EQ(program->updateCheck.CheckUpdate(false, false), UpdateResult::NothingDone);
    };
    EXPECT_EQ(Automatic(), 9) << "who asks for it does not wait";
    EXPECT_EQ(TakeBoxes(), Lines{"The new version will now start and complete the update."});
}

TEST_F(UpdateCheckTest, TellsOnceWhenNoCheckHasSucceededForALongTime) {
    const Date today = DayOf(clock.Now());
    http.Answers.clear();
    for (const auto& [last, told] : {std::pair(today - 90, false), {Date(0), false}, {today - 91, true}}) {
        settings.SetReg("UpdateCheckLast", last);
        EXPECT_EQ(Automatic(), 2);
        EXPECT_EQ(TakeBoxes().size(), told ? 1U : 0U);
        EXPECT_EQ(program->updateCheck.Notice().starts_with("No check for new versions has succeeded"), told);
    }
    EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), today);
}

TEST_F(UpdateCheckTest, TellsWhyThereIsNothingToDo) {
    const std::string unread = "The version information could not be read.";
    const std::string newest = "You are already using the newest version.";
    const std::string same = "x" + Program::Version().Numbers() + "-a.exe";
    struct {
        const char* What;
        std::string Page, General; ///< empty: cannot be read
        bool Online;
        int Automatic, OnDemand;
        std::string Status; ///< the last one on demand
    } const rows[] = {
        {"offline", "", "", false, 2, 2, unread},
        {"the site is down", "", "", true, 2, 3, unread},
        {"another page", "Welcome", "Welcome", true, 3, 3, unread},
        {"a page of a network's entrance", "Welcome", "Welcome", false, 2, 2, unread},
        {"no upgrade", release, release, true, 1, 1,
         "The page that was read contains no update information."},
        {"the same", release + "Upgradable A" + same + " V" + same, "x", true, 8, 8, newest},
        {"unreadable", release + "Upgradable Ax Vx", "x", true, 3, 3,
         "The page that was read offers a version in a way that cannot be read."},
        {"an older one", "", release + "Upgradable Ax0.3.9-a.exe Vx0.3.9-a.exe", true, 8, 8, newest}};
    for (const auto& row : rows) {
        http.Answers.clear();
        if (!row.Page.empty()) Put(ownPage, row.Page);
        if (!row.General.empty()) Put("update_general.html", row.General);
        internet.State = {row.Online, 0};
        EXPECT_EQ(Automatic(), row.Automatic) << row.What;
        EXPECT_TRUE(shell.Addresses.empty()) << "nobody is there to read it";
        EXPECT_EQ(OnDemand(), row.OnDemand) << row.What;
        EXPECT_EQ(TakeStatuses().back(), row.Status) << row.What;
        EXPECT_EQ(std::exchange(shell.Addresses, {}).size(), row.OnDemand == 1 ? 1U : 0U) << row.What;
    }
    EXPECT_EQ(folder.Read("Temp.htm"), release);
    EXPECT_NE(Log().find("\tUpdate\tthe offer of the page cannot be read\r\n"), std::string::npos);
}

TEST_F(UpdateCheckTest, LeavesTheNetworkAloneWhereItMust) {
    settings.SetReg("NoInet", true);
    EXPECT_EQ(OnDemand(), 10);
    EXPECT_EQ(TakeStatuses(), Lines{"Internet access is switched off in the settings."});
    settings.SetReg("NoInet", false);
    settings.SetReg("UpdateNext", clock.Now() + 30 * OneSecond);
    EXPECT_EQ(OnDemand(), 5);
    EXPECT_EQ(TakeStatuses(), Lines{"It is too early for another check."});
    EXPECT_EQ(TakeBoxes(),
              Lines{"The download was already attempted a short time ago. The next attempt is possible at "
                    "12:00:30 or later."});
    settings.SetReg("UpdateNext", DayOf(clock.Now()) + 1);
    EXPECT_EQ(OnDemand(), 5);
    EXPECT_NE(boxes.Take().Text.find("at 2024-03-16 00:00:00 or"), std::string::npos);
    aboutIsOpen = false;
    EXPECT_EQ(Automatic(), 5);
    settings.SetReg("UpdateNext", Date(0));
    UseSite("");
    EXPECT_EQ(OnDemand(), 10);
    EXPECT_EQ(TakeStatuses(),
              Lines{"This edition of Korvalin has no web address for updates. New versions come through the "
                    "system's package manager."});
    EXPECT_EQ(Asked(), Lines{});
}

TEST_F(UpdateCheckTest, AsksUnlessItUpdatesByItself) {
    for (const bool byItself : {false, true}) {
        settings.SetReg("AutoUpdate", byItself);
        settings.SetReg("UpdateCheckLast", Date(0));
        boxes.Answers = {MessageAnswer::No};
        EXPECT_EQ(Automatic(), byItself ? 9 : 5);
        EXPECT_EQ(TakeBoxes().size(), byItself ? 0U : 1U);
        EXPECT_EQ(shell.Pages.size(), 1U) << "the version history, for the one who is asked";
        EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), byItself ? 0 : DayOf(clock.Now()))
            << "not told again every hour";
    }
    Asked();
    onRasLine = true;
    BeginAnew();
    EXPECT_EQ(Automatic(), 9);
    EXPECT_EQ(Asked().front(), ownPage) << "a dial-up line is known to be up";
}

TEST_F(UpdateCheckTest, WaitsLongerAfterEachFailure) {
    Put("setup.exe", std::string(ShortestProgram - 1, 'n'));
    const Date minutes = 60 * OneSecond;
    const Date waits[] = {minutes / 2, minutes / 2, 10 * minutes, 10 * minutes, 10 * minutes, 0, 0};
    for (const Date wait : waits) {
        EXPECT_EQ(Automatic(), 3);
        EXPECT_EQ(TakeStatuses().back(), "The download failed. The file is too short or too long.");
        const Date next = wait > 0 ? clock.Now() + wait : DayOf(clock.Now()) + 1;
        EXPECT_NEAR(settings.Get(Keys::UpdateNext), next, OneSecond);
        EXPECT_EQ(Automatic(), 5);
        TakeBoxes();
        clock.SetWallClock(next + 2 * OneSecond);
    }
    EXPECT_NE(Log().find("\tUpdate\tsetup.exe: is too short\r\n"), std::string::npos);
    PutUpdate(offer);
    http.Answers.erase(siteAddress + "Korvalin.lng");
    EXPECT_EQ(Automatic(), 3) << "the language file is missing";
    EXPECT_EQ(TakeStatuses().back(),
              "The download failed. The update site did not answer, or the connection broke.");
    EXPECT_TRUE(shell.Started.empty());
    EXPECT_EQ(NewFiles(), Lines{}) << "no part of an update is one";
    BeginAnew();
    EXPECT_EQ(Automatic(), 9);
}

TEST_F(UpdateCheckTest, ReplacesWhatAnEarlierDownloadHasLeft) {
    fs::create_directories(newProgram);
    folder.Write("program/Korvalin_new.exe.part.new-aBc123", "of a program that was killed");
    EXPECT_EQ(Automatic(), 9) << "an empty folder makes room";
    EXPECT_EQ(NewFiles(), (Lines{NewLanguageFileName, NewProgramFileName}));
    for (const bool tooShort : {false, true}) {
        folder.Write("program/Korvalin_new.exe", std::string(ShortestProgram - (tooShort ? 1 : 0), 'o'));
        fs::last_write_time(newProgram, fs::last_write_time(running) + std::chrono::hours(tooShort ? 1 : -1));
        BeginAnew();
        EXPECT_EQ(Automatic(), 9);
        EXPECT_EQ(folder.Read("program/Korvalin_new.exe")[0], 'n');
    }
}

TEST_F(UpdateCheckTest, TakesOnlyWhatTheSignedManifestTellsOf) {
    UseSite(siteAddress, "6b6579");
    signatures.Valid = std::string(64, 's');
    const std::string head =
        "signature " + ReplaceAll(std::string(64, '*'), "*", "73") + "\nKorvalin update 1\n";
    const auto version = [](const char* number, const char* expires, const char* name = "setup.exe") {
        return fmt::format("expires {1}\nautomatic {0} {2}\non-demand 9.5.0 later.exe\n", number, expires,
                           name);
    };
    const auto file = [](const std::string& name, const std::string& content) {
        return fmt::format("file {} {} {}\n", content.size(), FakeSignatures::Sum(content), name);
    };
    const std::string texts = file("Korvalin.lng", newTexts);
    const std::string setup = file("setup.exe", std::string(ShortestProgram, 'n'));
    const std::string good = version("9.4.1", "2024-04-01");
    const std::string unsignedText = "It is not signed by the maker.";
    const std::string changed = "The file is incomplete or was changed.";
    const std::string other = "The maker's signed information is about another version.";
    struct {
        const char* What;
        std::string Manifest;
        std::string Told; ///< how the last status ends
    } const rows[] = {
        {"none", "", "the connection broke."},
        {"forged", ReplaceAll(head, "73", "00") + good + setup + texts, unsignedText},
        {"no signature", head.substr(head.find('\n') + 1) + good + setup + texts, unsignedText},
        {"cut off", head + "expires 2024-04-01\n", unsignedText},
        {"another format", ReplaceAll(head, "update 1", "update 2") + good + setup + texts, unsignedText},
        {"expired", head + version("9.4.1", "2024-03-15") + setup + texts, "has expired."},
        {"older", head + ReplaceAll(version("0.3.9", "2024-04-01"), "9.5.0", "0.3.9") + setup + texts, other},
        {"another", head + version("9.4.0", "2024-04-01") + setup + texts, other},
        {"without the program", head + good + texts, unsignedText},
        {"without the texts", head + good + setup, unsignedText},
        {"another program", head + good + file("setup.exe", "x") + texts, changed},
        {"no program of the version", head + version("9.4.1", "2024-04-01", "other.exe") + setup + texts,
         unsignedText},
        {"other texts", head + good + setup + file("Korvalin.lng", "x"), changed},
        {"good", head + good + setup + texts, "All files have been downloaded."}};
    for (const auto& row : rows) {
        const bool isGood = row.What == std::string("good");
        BeginAnew();
        Put("update.manifest", row.Manifest);
        Put("another.exe", std::string(ShortestProgram, 'a'));
        if (isGood) Put(ownPage, ReplaceAll(offer, "setup.exe", "another.exe")); // only the version counts
        EXPECT_EQ(Automatic(), isGood ? 9 : 3) << row.What;
        EXPECT_TRUE(TakeStatuses().back().ends_with(row.Told)) << row.What;
        EXPECT_EQ(NewFiles().size(), isGood ? 3U : 0U) << row.What;
        EXPECT_EQ(shell.Started.size(), isGood ? 1U : 0U) << row.What;
    }
    EXPECT_EQ(folder.Read("program/Korvalin_new.manifest"), std::end(rows)[-1].Manifest);
    EXPECT_EQ(folder.Read("program/Korvalin_new.exe")[0], 'n');
    const std::string current = Program::Version().Numbers();
    const std::string nothingNew = head + version(current.c_str(), "2024-04-01") + setup + texts;
    struct {
        const char* What;
        std::string Page, Manifest;
        int Automatic, OnDemand;
    } const pages[] = {{"keeps the signed version back", "Upgradable Ax" + current + "-a.exe",
                        std::end(rows)[-1].Manifest, 3, 3},
                       {"offers nothing", "", std::end(rows)[-1].Manifest, 3, 3},
                       {"offers nothing and nobody signs that", "", "", 3, 3},
                       {"offers nothing new by itself", "Upgradable Ax" + current + "-a.exe Vx9.5.0-a.exe",
                        nothingNew, 8, 5},
                       {"rightly offers nothing", "", ReplaceAll(nothingNew, "9.5.0", current), 1, 1}};
    for (const auto& row : pages) {
        BeginAnew();
        Put(ownPage, release + row.Page);
        Put("update.manifest", row.Manifest);
        EXPECT_EQ(Automatic(), row.Automatic) << row.What;
        EXPECT_EQ(OnDemand(), row.OnDemand) << row.What;
        TakeBoxes();
    }
    EXPECT_TRUE(shell.Addresses.empty()) << "nobody has signed the page";
    signatures.Works = false;
    EXPECT_EQ(Automatic(), 3);
    EXPECT_TRUE(TakeStatuses().back().ends_with("cannot be checked here (libsodium is missing)."));
}

TEST_F(UpdateCheckTest, ALanguageFileIsReadBeforeItIsTaken) {
    const std::string lines = newTexts.substr(0, newTexts.size() / 4);
    for (const std::string& bad : {std::string("<h1>Welcome</h1>"), lines, newTexts + "FRA\ta\t1\tb\r\n"}) {
        BeginAnew();
        Put("Korvalin.lng", bad);
        EXPECT_EQ(Automatic(), 3);
        EXPECT_EQ(NewFiles(), Lines{});
    }
    BeginAnew();
    settings.SetReg("Language", "FRA");
    EXPECT_EQ(Automatic(), 3) << "the user's own is missing";
    EXPECT_NE(Log().find("holds only 0 texts of the language FRA"), std::string::npos);
}

TEST_F(UpdateCheckTest, OnlyTellsWhereItCannotInstall) {
    EXPECT_EQ(program->updateCheck.Notice(), "");
    const std::pair<bool*, const char*> rows[] = {
        {&files.DiskFull, "install the new version in the same way"},
        {&files.Foreign, "others can change the program folder"}};
    for (const auto& [hindrance, text] : rows) {
        *hindrance = true;
        EXPECT_EQ(OnDemand(), 5);
        const std::string told = TakeStatuses().back();
        EXPECT_NE(told.find(text), std::string::npos) << told;
        EXPECT_NE(told.find("(9.4.1)\n" + siteAddress + "versions.html"), std::string::npos) << told;
        EXPECT_EQ(Automatic(), 5);
        EXPECT_EQ(program->updateCheck.Notice(), told);
        *hindrance = false;
    }
    EXPECT_TRUE(shell.Pages.empty()) << "no page comes up by itself";
    shell.Executable = newProgram; // could not install itself
    EXPECT_EQ(Automatic(), 5);
    EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), DayOf(clock.Now())) << "not told again every hour";
    EXPECT_EQ(settings.Get(Keys::UpdateNext), 0);
}

TEST_F(UpdateCheckTest, AFileNameOfThePageLeadsNowhereElse) {
    PutUpdate(release + "Upgradable Ax9.4.1-../../evil.exe ");
    EXPECT_EQ(Automatic(), 3);
    EXPECT_EQ(Asked(), (Lines{"update_general.html", ownPage}));
}

TEST_F(UpdateCheckTest, IsCancelledAtAnyMomentAndRunsOnceAtATime) {
    UpdateCheck& check = program->updateCheck;
    for (const std::string moment : {"Reading", "Newest release", "Downloading: Korvalin_new",
                                     "Downloading: KorvalinLng", "All files have been downloaded."}) {
        OnStatus = [&](const std::string& status) {
            if (!status.starts_with(moment)) return;
            OnStatus = [](const std::string&) {};
            EXPECT_EQ(static_cast<int>(check.CheckUpdate(false, false)), 10) << "one is running";
            EXPECT_EQ(statuses.back(), "A check is already running.");
            check.Cancel();
        };
        settings.SetReg("UpdateNext", Date(0));
        boxes.Answers = {MessageAnswer::Yes};
        EXPECT_EQ(OnDemand(), 5) << moment;
        EXPECT_EQ(TakeStatuses().back(), "The check was canceled.");
        EXPECT_TRUE(shell.Started.empty());
        EXPECT_EQ(std::distance(fs::directory_iterator(programFolder), {}), 2) << "nothing new, nothing kept";
        TakeBoxes();
    }
    check.Cancel(); // none is running
    settings.SetReg("UpdateNext", Date(0));
    EXPECT_EQ(Automatic(), 9);
}

TEST_F(UpdateCheckTest, ANewProgramThatCannotBeStartedIsRemovedAndTriedAgain) {
    lock.NewProgramRuns = [calls = 0]() mutable { return ++calls % 2 == 1; }; // and ends
    for (bool* fault : {&shell.Starts, &lock.NewProgramIsReady}) {
        *fault = false;
        BeginAnew();
        const double start = clock.AwakeSeconds();
        EXPECT_EQ(Automatic(), 3);
        EXPECT_EQ(TakeStatuses().back(), "The new version could not be started.");
        EXPECT_LT(clock.AwakeSeconds(), start + 1) << "nobody waits for what has ended";
        EXPECT_EQ(NewFiles(), Lines{});
        *fault = true;
        settings.SetReg("UpdateNext", Date(0));
        EXPECT_EQ(Automatic(), 9);
    }
    EXPECT_NE(Log().find("cannot be started: "), std::string::npos);
}

} // namespace
