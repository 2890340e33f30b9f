#include "inet/UpdateFixture.h"

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
        Put("Korvalin.lng", "new texts");
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
    EXPECT_EQ(folder.Read("program/KorvalinLng_new.lng"), "new texts");
    EXPECT_EQ(folder.Read("program/Korvalin_V2_3_12.exe"), "the running program");
    EXPECT_EQ(folder.Read("program/KorvalinLng_V2_3_12.txt"), folder.Read("program/Korvalin.lng"));
    EXPECT_EQ(shell.Started, std::vector<fs::path>{New()});
    EXPECT_EQ(Log(), "");
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
    EXPECT_EQ(TakeStatuses(), Lines{"This edition of Korvalin has no web address for updates."});
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
    settings.SetReg("UpdateNext", Date(0));
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
        EXPECT_EQ(TakeStatuses().back(), "The download failed.");
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
    EXPECT_TRUE(shell.Started.empty());
    settings.SetReg("UpdateNext", Date(0));
    PutUpdate();
    Asked();
    EXPECT_EQ(Automatic(), 9);
    EXPECT_EQ(Asked(), (Lines{"update_general.html", "update2312.html", "Korvalin.lng"}))
        << "the program is here already";
    fs::remove(New());
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
        settings.SetReg("UpdateNext", Date(0));
        EXPECT_EQ(Automatic(), 9);
        EXPECT_EQ(folder.Read("program/Korvalin_new.exe")[0], 'n');
    }
}

TEST_F(UpdateCheckTest, TakesOnlySignedFilesWhereThereIsAKey) {
    UseSite(siteAddress, files, signatures, "key");
    signatures.Valid = "signed";
    PutUpdate();
    struct {
        const char *Program, *Texts;
        int Result;
    } const rows[] = {
        {"forged", "signed", 3}, {"", "signed", 3}, {"signed", "forged", 3}, {"signed", "signed", 9}};
    for (const auto& row : rows) {
        settings.SetReg("UpdateNext", Date(0));
        fs::remove(New());
        Put("setup241.exe.sig", row.Program);
        Put("Korvalin.lng.sig", row.Texts);
        EXPECT_EQ(Automatic(), row.Result);
        EXPECT_EQ(fs::exists(New()), row.Program == signatures.Valid);
        EXPECT_EQ(fs::exists(programFolder / NewLanguageFileName), row.Result == 9);
        EXPECT_EQ(shell.Started.size(), row.Result == 9 ? 1U : 0U);
    }
    EXPECT_NE(Log().find("setup241.exe: is not signed by the maker"), std::string::npos);
    settings.SetReg("UpdateNext", Date(0));
    Put("setup241.exe.sig", "forged");
    EXPECT_EQ(Automatic(), 3) << "one that lies there already counts no more";
    EXPECT_EQ(std::distance(fs::directory_iterator(programFolder), {}), 5) << "nothing half done is left";
}

TEST_F(UpdateCheckTest, OnlyTellsWhereItCannotInstall) {
    PutUpdate();
    files.DiskFull = true;
    EXPECT_EQ(OnDemand(), 5);
    EXPECT_NE(TakeStatuses().back().find("install the new version in the same way"), std::string::npos);
    EXPECT_EQ(Automatic(), 5);
    EXPECT_EQ(shell.Pages.size(), 2U);
    files.DiskFull = false;
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
        TakeBoxes();
    }
    check->Cancel(); // none is running
    settings.SetReg("UpdateNext", Date(0));
    EXPECT_EQ(Automatic(), 9);
}

TEST_F(UpdateCheckTest, ANewProgramThatCannotBeStartedIsRemoved) {
    PutUpdate();
    shell.Starts = false;
    EXPECT_EQ(Automatic(), 3);
    EXPECT_FALSE(fs::exists(New()));
    EXPECT_NE(Log().find("cannot be started: "), std::string::npos);
}

} // namespace
