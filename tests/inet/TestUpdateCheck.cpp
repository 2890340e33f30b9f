#include "base/Text.h"
#include "inet/UpdateFixture.h"

#include <fmt/format.h>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

const std::string siteAddress = "https://maker.example/update/";
const std::string release = "Newest Release: 2.4.1 of 1 May<";
const std::string offer = release + "Upgradable Ax2.4.1-setup241.exe Vx2.4.1-setup241.exe <ENG:1.3<";

class UpdateCheckTest : public UpdateFixture<FakeWeb> {
  protected:
    UpdateCheckTest() {
        internet.State = {true, InternetConnectionLan};
        UseSite(siteAddress, files, signatures);
    }
    void Put(const std::string& name, const std::string& body) { http.Answers[siteAddress + name] = {body}; }
    void PutUpdate(const std::string& page = offer) {
        Put("update2312.html", page);
        Put("update_general.html", page);
        Put("setup241.exe", std::string(ShortestProgram, 'n'));
        Put("Korvalin.lng", newTexts);
    }
    /// As long after everything that holds a check back, and as if nothing had been taken yet.
    void BeginAnew() {
        settings.SetReg("UpdateNext", Date(0));
        settings.SetReg("UpdateTaken", "");
        shell.Started.clear();
    }
    Lines Asked() { // names of the files
        Lines names;
        for (const std::string& address : http.TakeAddresses())
            names.push_back(address.substr(siteAddress.size()));
        return names;
    }
};

TEST_F(UpdateCheckTest, BringsKeepsAndStartsTheNewVersion) {
    PutUpdate();
    boxes.Answers = {MessageAnswer::Yes};
    EXPECT_EQ(OnDemand(), 9);
    EXPECT_EQ(Asked(), (Lines{"update2312.html", "setup241.exe", "Korvalin.lng"}));
    EXPECT_EQ(shell.Pages, Lines{"https://maker.example/versions.html"});
    EXPECT_EQ(boxes.Shown.front().Title, "Korvalin");
    EXPECT_EQ(boxes.Shown.front().Icon, MessageIcon::Question);
    EXPECT_EQ(
        TakeBoxes(),
        (Lines{"A newer version of Korvalin is available. Download and install version 2.4.1 of 1 May now?",
               "The new version will now start and complete the update."}));
    EXPECT_EQ(TakeStatuses(),
              (Lines{"Reading version information …", "Newest release: 2.4.1 of 1 May – comparing versions …",
                     "Downloading: Korvalin_new.exe", "Downloading: KorvalinLng_new.lng (1.3)",
                     "All files have been downloaded."}));
    EXPECT_EQ(fs::file_size(New()), ShortestProgram);
    EXPECT_EQ(fs::status(New()).permissions() & fs::perms(0755), fs::perms(0755));
    EXPECT_EQ(fs::status(programFolder / NewLanguageFileName).permissions() & fs::perms(0755),
              fs::perms(0644));
    EXPECT_EQ(folder.Read("program/KorvalinLng_new.lng"), newTexts);
    EXPECT_EQ(folder.Read("program/Korvalin_V2_3_12.exe"), "the running program");
    EXPECT_EQ(folder.Read("program/KorvalinLng_V2_3_12.txt"), folder.Read("program/Korvalin.lng"));
    EXPECT_EQ(shell.Started, std::vector<fs::path>{New()});
    EXPECT_EQ(NewFiles(), (Lines{NewLanguageFileName, NewProgramFileName}));
    EXPECT_EQ(Log(), "");
}

TEST_F(UpdateCheckTest, TakesAnOfferOnlyOnceByItself) {
    PutUpdate();
    EXPECT_EQ(Automatic(), 9);
    EXPECT_EQ(settings.Get(Keys::UpdateTaken), "2.4.1") << "before the new program is started";
    settings.SetReg("UpdateNext", Date(0));
    EXPECT_EQ(Automatic(), 5) << "what came is the same old version";
    EXPECT_EQ(shell.Started.size(), 1U);
    EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), DayOf(clock.Now()));
    EXPECT_NE(Log().find("2.4.1 was installed before"), std::string::npos);
    boxes.Answers = {MessageAnswer::Yes};
    EXPECT_EQ(OnDemand(), 9) << "who asks for it gets it";
    boxes.Shown.clear();
    PutUpdate(release + "Upgradable Ax2.4.2-setup241.exe");
    settings.SetReg("UpdateNext", Date(0));
    EXPECT_EQ(Automatic(), 9);
}

TEST_F(UpdateCheckTest, DownloadsNothingByItselfOverAMeteredNetwork) {
    PutUpdate();
    internet.Metered = true;
    EXPECT_EQ(Automatic(), 5);
    EXPECT_EQ(Asked(), (Lines{"update_general.html", "update2312.html"}));
    boxes.Answers = {MessageAnswer::Yes};
    EXPECT_EQ(OnDemand(), 9) << "who asks for it knows";
    boxes.Shown.clear();
}

TEST_F(UpdateCheckTest, WaitsByItselfUntilTheUserIsFree) {
    PutUpdate();
    int looks = 0;
    userIsBusy = [&] {
        EXPECT_TRUE(shell.Started.empty());
        return ++looks < 5;
    };
    EXPECT_EQ(Automatic(), 9);
    EXPECT_EQ(TakeStatuses().back(),
              "The new version is ready and waits until all other windows are closed.");
    EXPECT_TRUE(boxes.Shown.empty());
    BeginAnew();
    userIsBusy = [] { return true; };
    events.OnProcessPending = [&] {
        if (!statuses.empty() && statuses.back().starts_with("The new version is ready")) check->Cancel();
    };
    EXPECT_EQ(Automatic(), 5);
    EXPECT_EQ(NewFiles(), Lines{});
}

TEST_F(UpdateCheckTest, TellsWhyThereIsNothingToDo) {
    const std::string unread = "The version information could not be read.";
    const std::string newest = "You are already using the newest version.";
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
        {"the same", release + "Upgradable Ax2.3.12-a.exe Vx2.3.12-a.exe", "x", true, 8, 8, newest},
        {"unreadable", release + "Upgradable Ax Vx", "x", true, 3, 3,
         "The page that was read offers a version in a way that cannot be read."},
        {"an older one", "", release + "Upgradable Ax2.3.9-a.exe Vx2.3.9-a.exe", true, 8, 8, newest}};
    for (const auto& row : rows) {
        http.Answers.clear();
        if (!row.Page.empty()) Put("update2312.html", row.Page);
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
    PutUpdate();
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
    UseSite("", files, signatures);
    EXPECT_EQ(OnDemand(), 10);
    EXPECT_EQ(TakeStatuses(),
              Lines{"This edition of Korvalin has no web address for updates. New versions come through the "
                    "system's package manager."});
    EXPECT_EQ(Asked(), Lines{});
}

TEST_F(UpdateCheckTest, AsksUnlessItUpdatesByItself) {
    PutUpdate();
    for (const bool byItself : {false, true}) {
        settings.SetReg("AutoUpdate", byItself);
        settings.SetReg("UpdateCheckLast", Date(0));
        boxes.Answers = {MessageAnswer::No};
        EXPECT_EQ(Automatic(), byItself ? 9 : 5);
        EXPECT_EQ(boxes.Shown.size(), byItself ? 0U : 1U);
        EXPECT_EQ(shell.Pages.size(), 1U) << "the version history, for the one who is asked";
        EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), byItself ? 0 : DayOf(clock.Now()))
            << "not told again every hour";
        boxes.Shown.clear();
    }
    Asked();
    onRasLine = true;
    BeginAnew();
    EXPECT_EQ(Automatic(), 9);
    EXPECT_EQ(Asked().front(), "update2312.html") << "a dial-up line is known to be up";
}

TEST_F(UpdateCheckTest, WaitsLongerAfterEachFailure) {
    PutUpdate();
    Put("setup241.exe", std::string(ShortestProgram - 1, 'n'));
    const Date minutes = 60 * OneSecond;
    const Date waits[] = {minutes / 2, minutes / 2, 10 * minutes, 10 * minutes, 10 * minutes, 0, 0};
    for (const Date wait : waits) {
        EXPECT_EQ(Automatic(), 3);
        EXPECT_EQ(TakeStatuses().back(), "The download failed. The file is too short or too long.");
        const Date next = wait > 0 ? clock.Now() + wait : DayOf(clock.Now()) + 1;
        EXPECT_NEAR(settings.Get(Keys::UpdateNext), next, OneSecond);
        EXPECT_FALSE(fs::exists(New()));
        EXPECT_EQ(Automatic(), 5);
        TakeBoxes();
        clock.SetWallClock(next + 2 * OneSecond);
    }
    EXPECT_NE(Log().find("\tUpdate\tsetup241.exe: is too short\r\n"), std::string::npos);
    PutUpdate();
    http.Answers.erase(siteAddress + "Korvalin.lng");
    EXPECT_EQ(Automatic(), 3) << "the language file is missing";
    EXPECT_EQ(TakeStatuses().back(),
              "The download failed. The update site did not answer, or the connection broke.");
    EXPECT_TRUE(shell.Started.empty());
    EXPECT_EQ(NewFiles(), Lines{}) << "no part of an update is one";
    settings.SetReg("UpdateNext", Date(0));
    PutUpdate();
    EXPECT_EQ(Automatic(), 9);
    BeginAnew();
    Put("setup241.exe", "short");
    EXPECT_EQ(Automatic(), 3);
    EXPECT_NEAR(settings.Get(Keys::UpdateNext), clock.Now() + minutes / 2, OneSecond) << "counted anew";
}

TEST_F(UpdateCheckTest, ReplacesAUselessNewProgramThatIsAlreadyThere) {
    PutUpdate();
    fs::create_directories(New());
    EXPECT_EQ(Automatic(), 9) << "an empty folder makes room";
    for (const bool tooShort : {false, true}) {
        folder.Write("program/Korvalin_new.exe", std::string(ShortestProgram - (tooShort ? 1 : 0), 'o'));
        fs::last_write_time(New(), fs::last_write_time(running) + std::chrono::hours(tooShort ? 1 : -1));
        BeginAnew();
        EXPECT_EQ(Automatic(), 9);
        EXPECT_EQ(folder.Read("program/Korvalin_new.exe")[0], 'n');
    }
}

TEST_F(UpdateCheckTest, TakesOnlyWhatTheSignedManifestTellsOf) {
    UseSite(siteAddress, files, signatures, "key");
    signatures.Valid = std::string(64, 's');
    const std::string signature = "signature " + ReplaceAll(std::string(64, '*'), "*", "73") + "\n";
    const std::string head = "Korvalin update 1\n";
    const std::string version = "version 2.4.1\nexpires 2024-04-01\n";
    const auto file = [](const std::string& name, const std::string& content) {
        return fmt::format("file {} {} {}\n", content.size(), FakeSignatures::Sum(content), name);
    };
    const std::string newProgram = file("setup241.exe", std::string(ShortestProgram, 'n'));
    const std::string texts = file("Korvalin.lng", newTexts);
    const std::string unsignedText = "It is not signed by the maker.";
    const std::string changed = "The file is incomplete or was changed.";
    const std::string other = "The maker's signed information is about another version.";
    struct {
        const char* What;
        std::string Manifest;
        int Result;
        std::string Told; ///< how the last status ends
    } const rows[] = {
        {"none", "", 3, "the connection broke."},
        {"forged", "signature " + std::string(128, '0') + "\n" + head + version + newProgram + texts, 3,
         unsignedText},
        {"no signature", head + version + newProgram + texts, 3, unsignedText},
        {"cut off", signature + head + "version 2.4.1\n", 3, unsignedText},
        {"another format", signature + "Korvalin update 2\n" + version + newProgram + texts, 3, unsignedText},
        {"expired", signature + head + "version 2.4.1\nexpires 2024-03-15\n" + newProgram + texts, 3,
         "has expired."},
        {"older", signature + head + "version 2.3.9\nexpires 2024-04-01\n" + newProgram + texts, 3, other},
        {"another", signature + head + "version 2.4.0\nexpires 2024-04-01\n" + newProgram + texts, 3, other},
        {"without the program", signature + head + version + texts, 3, unsignedText},
        {"without the texts", signature + head + version + newProgram, 3, unsignedText},
        {"another program", signature + head + version + file("setup241.exe", "x") + texts, 3, changed},
        {"other texts", signature + head + version + newProgram + file("Korvalin.lng", "x"), 3, changed},
        {"good", signature + head + version + newProgram + texts, 9, "All files have been downloaded."}};
    for (const auto& row : rows) {
        BeginAnew();
        PutUpdate();
        Put("update.manifest", row.Manifest);
        EXPECT_EQ(Automatic(), row.Result) << row.What;
        EXPECT_TRUE(TakeStatuses().back().ends_with(row.Told)) << row.What;
        EXPECT_EQ(NewFiles().size(), row.Result == 9 ? 3U : 0U) << row.What;
        EXPECT_EQ(shell.Started.size(), row.Result == 9 ? 1U : 0U) << row.What;
    }
    EXPECT_EQ(folder.Read("program/Korvalin_new.manifest"), std::end(rows)[-1].Manifest);
    Put("update2312.html", release + "Upgradable Ax2.3.12-setup241.exe");
    BeginAnew();
    EXPECT_EQ(Automatic(), 3) << "a page that keeps the signed version back";
}

TEST_F(UpdateCheckTest, ALanguageFileIsReadBeforeItIsTaken) {
    const std::string lines = newTexts.substr(0, newTexts.size() / 4);
    for (const std::string& bad : {std::string("<h1>Welcome</h1>"), lines, newTexts + "FRA\ta\t1\tb\r\n"}) {
        BeginAnew();
        PutUpdate();
        Put("Korvalin.lng", bad);
        EXPECT_EQ(Automatic(), 3);
        EXPECT_EQ(NewFiles(), Lines{});
    }
    BeginAnew();
    PutUpdate();
    settings.SetReg("Language", "FRA");
    EXPECT_EQ(Automatic(), 3) << "the user's own is missing";
    EXPECT_NE(Log().find("holds only 0 texts of the language FRA"), std::string::npos);
}

TEST_F(UpdateCheckTest, OnlyTellsWhereItCannotInstall) {
    PutUpdate();
    EXPECT_EQ(check->Notice(), "");
    for (bool* hindrance : {&files.DiskFull, &files.Foreign}) {
        *hindrance = true;
        EXPECT_EQ(OnDemand(), 5);
        const std::string told = TakeStatuses().back();
        EXPECT_NE(told.find("install the new version in the same way"), std::string::npos);
        EXPECT_NE(told.find("(2.4.1)\nhttps://maker.example/versions.html"), std::string::npos) << told;
        EXPECT_EQ(Automatic(), 5);
        EXPECT_EQ(check->Notice(), told);
        *hindrance = false;
    }
    EXPECT_TRUE(shell.Pages.empty()) << "no page comes up by itself";
    shell.Executable = New(); // could not install itself
    EXPECT_EQ(Automatic(), 5);
    EXPECT_EQ(settings.Get(Keys::UpdateCheckLast), DayOf(clock.Now())) << "not told again every hour";
    EXPECT_EQ(settings.Get(Keys::UpdateNext), 0);
}

TEST_F(UpdateCheckTest, AFileNameOfThePageLeadsNowhereElse) {
    PutUpdate(release + "Upgradable Ax2.4.1-../../evil.exe ");
    EXPECT_EQ(Automatic(), 3);
    EXPECT_EQ(Asked(), (Lines{"update_general.html", "update2312.html"}));
}

TEST_F(UpdateCheckTest, IsCancelledAtAnyMomentAndRunsOnceAtATime) {
    PutUpdate();
    for (const std::string moment : {"Reading", "Newest release", "Downloading: Korvalin_new",
                                     "Downloading: KorvalinLng", "All files have been downloaded."}) {
        OnStatus = [&](const std::string& status) {
            if (!status.starts_with(moment)) return;
            OnStatus = [](const std::string&) {};
            EXPECT_EQ(static_cast<int>(check->CheckUpdate(false, false)), 10) << "one is running";
            EXPECT_EQ(statuses.back(), "A check is already running.");
            check->Cancel();
        };
        settings.SetReg("UpdateNext", Date(0));
        boxes.Answers = {MessageAnswer::Yes};
        EXPECT_EQ(OnDemand(), 5) << moment;
        EXPECT_EQ(TakeStatuses().back(), "The check was canceled.");
        EXPECT_TRUE(shell.Started.empty());
        EXPECT_EQ(NewFiles(), Lines{}) << moment;
        EXPECT_FALSE(fs::exists(programFolder / "Korvalin_V2_3_12.exe"));
        TakeBoxes();
    }
    check->Cancel(); // none is running
    settings.SetReg("UpdateNext", Date(0));
    EXPECT_EQ(Automatic(), 9);
}

TEST_F(UpdateCheckTest, ANewProgramThatCannotBeStartedIsRemoved) {
    PutUpdate();
    for (bool* fault : {&shell.Starts, &lock.NewProgramRuns}) { // the second ends at once
        *fault = false;
        BeginAnew();
        EXPECT_EQ(Automatic(), 3);
        EXPECT_EQ(NewFiles(), Lines{});
        *fault = true;
    }
    EXPECT_NE(Log().find("cannot be started: "), std::string::npos);
}

} // namespace
