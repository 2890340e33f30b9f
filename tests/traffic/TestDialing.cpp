#include "fakes/CoreFixture.h"
#include "traffic/Dialing.h"
#include "traffic/PhoneNumberGuard.h"

using namespace korvalin;

namespace {

class DialingTest : public CoreFixture {
  protected:
    DialingTest() {
        internet.State = {true, InternetRasInstalled};
        WriteTexts("ENG\tmodRAS\t2\tchanged\r\nENG\tmodRAS\t3\told\r\nENG\tmodRAS\t4\tnew\r\n"
                   "ENG\tmodRAS\t5\tdial?\r\n");
        settings.SetReg("Language", "ENG");
        EXPECT_TRUE(language.InitProgramTexts());
    }

    void Add(const std::string& name, const std::string& number = "123456", const std::string& area = "089",
             const std::string& device = "modem") {
        ras.Entries.push_back({name, {area, number, device}});
    }
    void Connect(std::int32_t handle, std::uint32_t state = RascsConnected) {
        ras.Lines.push_back({{handle, "Line", "Modem"}, {}, state});
    }
    std::vector<std::string> Entries() {
        TableFromOne<std::string> names;
        const std::size_t count = book.RASGetEntries(names);
        EXPECT_EQ(count, names.Size());
        return {names.begin(), names.end()};
    }
    std::string& Number() { return ras.Entries.front().Properties.LocalPhoneNumber; }
    bool Passes(const std::string& name = "Office") { return guard.CheckPhoneNumber(name); }
    bool Asks(const std::string& name = "Office") {
        const bool passes = Passes(name); // nobody answers Yes
        EXPECT_EQ(TakeBoxes().size(), passes ? 0U : 1U);
        return !passes;
    }

    LineState lines;
    PhoneBook book{ras, internet, boxes, errors};
    PhoneNumberGuard guard{ras, settings, language, boxes};
    Dialing dialing{{.Internet = internet,
                     .Ras = ras,
                     .PhoneBook = book,
                     .PhoneNumberGuard = guard,
                     .LineState = lines,
                     .Settings = settings,
                     .Events = events,
                     .Errors = errors}};
};

TEST_F(DialingTest, ListsThePhoneBookByThePlainOrderOfItsNames) {
    for (const char* name : {"beta", "Zulu", "alpha & co", "Äther", "Alpha"})
        Add(name);
    EXPECT_EQ(Entries(), (Lines{"Alpha", "Zulu", "alpha & co", "beta", "Äther"}));
    ras.EntriesErrors = {0, 608};
    EXPECT_EQ(Entries(), Lines(5));
    const auto box = boxes.Take();
    EXPECT_EQ(box.Text + "|" + box.Title, "RasEnumEntries failed: 608|Korvalin");
    internet.State.Flags = 0;
    EXPECT_EQ(Entries(), Lines()) << "RAS is not installed";
    EXPECT_EQ(Log(), "");
    internet.State.Flags = InternetRasInstalled;
    ras.EntriesErrors = {621};
    EXPECT_EQ(Entries(), Lines());
    EXPECT_NE(Log().find("RasEnumEntries failed: 621"), std::string::npos);
}

TEST_F(DialingTest, TheNumberOfTheFirstDialIsRememberedSilently) {
    const std::vector<std::array<std::string, 3>> rows = {
        {"089", "123456", "089-123456"}, {"", "*99#", "*99#"}, {"", "  ", ""}, {"", " 4711 ", "4711"}};
    for (const auto& [area, local, remembered] : rows) {
        ras.Entries.clear();
        settings.SetReg("Phone_Office", std::string());
        Add("Office", local, area);
        EXPECT_TRUE(Passes());
        EXPECT_EQ(settings.Get(Keys::Phone("Office")), remembered);
        EXPECT_TRUE(Passes());
    }
    EXPECT_TRUE(Passes("not in the phone book"));
}

TEST_F(DialingTest, AChangedNumberIsDialedOnlyOnYes) {
    Add("Office", "111", "");
    EXPECT_TRUE(Passes());
    Number() = "\u202E\r\n222";
    for (const MessageAnswer answer : {MessageAnswer::No, MessageAnswer::Cancel}) {
        boxes.Answers = {answer};
        EXPECT_FALSE(Passes());
        const auto box = boxes.Take();
        EXPECT_EQ(box.Text, "changed\r\n\r\nold 111\r\nnew %E2%80%AE%0D%0A222\r\n\r\ndial?")
            << "every character is seen";
        EXPECT_EQ(box.Title, "Korvalin");
        EXPECT_EQ(box.Icon, MessageIcon::Warning);
        EXPECT_EQ(box.Buttons, MessageButtons::YesNoCancel);
        EXPECT_EQ(settings.Get(Keys::Phone("Office")), "111");
    }
    Number() = "222";
    boxes.Answers = {MessageAnswer::Yes};
    EXPECT_TRUE(Passes());
    EXPECT_EQ(TakeBoxes().size(), 1U);
    EXPECT_TRUE(Passes()) << "and is asked about once";
    Number() = "333";
    boxes.Answers = {MessageAnswer::Yes, MessageAnswer::No};
    boxes.OnShow = [&] { // it changes again while the question stands, and the store is lost
        Number() = "444";
        registry.IsLost = true;
    };
    EXPECT_FALSE(Passes());
    EXPECT_EQ(TakeBoxes().size(), 2U);
}

TEST_F(DialingTest, NoChangeOfTheNumberPassesUnseen) {
    const std::string tooLong(2000, '1');
    struct {
        std::string Before, After;
    } const rows[] = {{"t123", "T123"}, {"123 456", "123456"},    {"123", "１２３"},
                      {"0900", "900"},  {tooLong, tooLong + "1"}, {tooLong, tooLong.substr(0, 1023)},
                      {tooLong, "123"}, {"123", "123\n"},         {"True", "False"}};
    // Names whose setting might be taken for another one, or be of another kind.
    for (const std::string name : {"Office", "Office_FreeHours", "Office_MonthStartDay", "Office_Alias",
                                   "Office_Up1MB", "LineLast", "Show_Color_MON_", "a\\b\x01"}) {
        const std::string& key = name == "a\\b\x01" ? "a\\b" : name;
        for (const auto& [before, after] : rows) {
            settings.SetReg("Phone_Office_Alias", std::string("Work"));
            settings.SetReg("Phone_Office_FreeHours", 20);
            ras.Entries.clear();
            Add(name, before, "");
            EXPECT_TRUE(Passes(name)) << "a first dial";
            Number() = after;
            EXPECT_TRUE(Asks(name)) << name << ", " << after;
            Number() = before;
            EXPECT_NE(Asks(name), before != tooLong) << name << ", " << after;
            EXPECT_EQ(settings.Get(Keys::Alias("Phone_Office")), "Work");
            EXPECT_EQ(settings.Get(Keys::FreeHours("Phone_Office")), 20);
            for (const char* end : {"", "_"})
                settings.SetReg("Phone_" + key + end, std::string());
        }
    }
}

TEST_F(DialingTest, ACopyUnderANameThatLooksTheSameIsNoFirstDial) {
    Add("My Office", "111", "");
    EXPECT_TRUE(Passes("My Office"));
    for (const char* name : {"my office", " My Office ", "My  Office", "My\u00A0Office", "My Of\u200Bfice",
                             "\u202DMy Office", "My Office\x07"}) {
        Add(name, "222", "");
        EXPECT_TRUE(Asks(name)) << name;
    }
    Add("Your Office", "222", "");
    EXPECT_TRUE(Passes("Your Office"));
}

TEST_F(DialingTest, DialsUnattendedAndOnceMoreWithThePromptAfterAWrongPassword) {
    using Flags = std::vector<std::uint32_t>;
    constexpr std::uint32_t prompt = 0x2000, unattended = 0xFFFF8000;
    struct {
        LineType Type;
        bool Connected;
        std::vector<int> Results;
        Flags Expected;
        const char* Last;
    } const rows[] = {{LineType::Undecided, false, {0}, {unattended}, "Office"},
                      {LineType::Lan, true, {0}, {unattended}, "Office"},
                      {LineType::Ras, true, {0}, {prompt}, "Office"},
                      {LineType::Undecided, false, {691, 0}, {unattended, prompt}, "Office"},
                      {LineType::Undecided, false, {691, 691, 0}, {unattended, prompt}, "before"},
                      {LineType::Undecided, false, {ErrorCancelled, 0}, {unattended}, "before"}};
    Add("Office");
    for (const auto& row : rows) {
        settings.SetReg("LineLast", std::string("before"));
        lines.MonitoredLineType = row.Type;
        lines.AnyLineConnected = row.Connected;
        internet.Dials.clear();
        internet.DialResults = row.Results;
        dialing.DialEntry("Office");
        Flags flags;
        for (const auto& [entry, flag] : internet.Dials)
            flags.push_back(flag);
        EXPECT_EQ(flags, row.Expected) << &row - rows;
        EXPECT_EQ(settings.Get(Keys::LineLast), row.Last) << &row - rows;
    }
    internet.Connection = 0; // it is up, but was not dialed by this program
    settings.SetReg("LineLast", std::string("before"));
    internet.DialResults.clear();
    dialing.DialEntry("Office");
    EXPECT_EQ(settings.Get(Keys::LineLast), "before");
}

TEST_F(DialingTest, ANumberThatChangesDuringAnAttemptIsAskedAboutBeforeTheNext) {
    struct {
        int SecondResult;
        std::size_t ChangesDuring; // attempt
        MessageAnswer Answer;
        std::size_t Dials;
        const char* Last;
    } const rows[] = {{0, 1, MessageAnswer::No, 1, ""},
                      {ErrorRetry, 2, MessageAnswer::Yes, 3, "Office"},
                      {ErrorRetry, 2, MessageAnswer::No, 2, ""}};
    for (const auto& row : rows) {
        ras.Entries.clear();
        Add("Office", "111", "");
        settings.SetReg("Phone_Office", std::string("111"));
        settings.SetReg("LineLast", std::string());
        internet.Dials.clear();
        internet.DialResults = {691, row.SecondResult};
        internet.OnDial = [&](const std::string&) {
            if (internet.Dials.size() == row.ChangesDuring) Number() = "222";
        };
        boxes.Answers = {row.Answer};
        dialing.DialEntry("Office");
        EXPECT_EQ(TakeBoxes().size(), 1U);
        EXPECT_EQ(internet.Dials.size(), row.Dials);
        EXPECT_EQ(settings.Get(Keys::LineLast), row.Last);
        EXPECT_FALSE(dialing.Busy());
    }
    EXPECT_EQ(internet.Dials.back().second, InternetDialForcePrompt);
}

TEST_F(DialingTest, NothingElseBeginsWhileItDialsOrWhenTheProgramEnds) {
    Add("Office");
    Connect(1);
    internet.OnDial = [&](const std::string&) {
        EXPECT_TRUE(dialing.Busy());
        dialing.DialEntry("Office");
        dialing.MONHangUp();
    };
    dialing.DialEntry("Office");
    EXPECT_EQ(internet.Dials.size(), 1U);
    EXPECT_EQ(ras.HungUp.size(), 0U);
    internet.DialResults = {0, 691};
    internet.OnDial = [&](const std::string&) { dialing.Stop(); };
    dialing.DialEntry("Office");
    dialing.DialEntry("Office");
    EXPECT_EQ(internet.Dials.size(), 2U);
}

TEST_F(DialingTest, HangsUpOneConnectionAPass) {
    struct {
        int Connections;
        bool Stubborn;
        std::size_t HangUps;
        bool Logged;
    } const rows[] = {{0, false, 0, false}, {3, false, 3, false}, {8, false, 8, false},
                      {9, false, 9, true},  {1, true, 11, true},  {257, false, 0, false}};
    for (const auto& row : rows) {
        ras.Lines.clear();
        ras.HungUp.clear();
        ras.Stubborn = row.Stubborn;
        std::filesystem::remove(folder / "Korvalin_ErrorLog.txt");
        for (int i = 1; i <= row.Connections; ++i)
            Connect(i, i % 2 == 0 ? RascsConnected : 0); // one that is still being dialed is hung up too
        const double before = clock.BootSeconds();
        dialing.MONHangUp();
        EXPECT_EQ(ras.HungUp.size(), row.HangUps) << &row - rows;
        EXPECT_NEAR(clock.BootSeconds() - before, static_cast<double>(row.HangUps) * 0.1, 1e-6);
        EXPECT_EQ(Log().find("MONHangUp failed") != std::string::npos, row.Logged) << &row - rows;
    }
    EXPECT_EQ(TakeBoxes(), Lines());
}

TEST_F(DialingTest, OffersTheEntriesOrToHangUp) {
    Add("Work", "1", "", "VPN");
    Add("Tunnel", "1", "", "vpn");
    Add("Home", "1", "", "PPPoE");
    settings.SetReg("LineLast", std::string("Tunnel"));
    EXPECT_EQ(dialing.Choices().Entries, (Lines{"Home", "Work"}));
    EXPECT_EQ(dialing.Choices().Quick, "") << "what is not offered is no quick item";
    settings.SetReg("LineLast", std::string("Work"));
    struct {
        LineType Type;
        bool AnyLineConnected;
        std::uint32_t State; // of a dial-up connection; 0 for none
        bool HangUp;
    } const rows[] = {{LineType::Ras, true, RascsConnected, true},
                      {LineType::Ras, false, RascsConnected, false},
                      {LineType::Lan, true, RascsConnected, true},
                      {LineType::Lan, true, 3, false},
                      {LineType::Lan, true, 0, false},
                      {LineType::Undecided, false, RascsConnected, true}};
    for (const auto& row : rows) {
        lines.MonitoredLineType = row.Type;
        lines.AnyLineConnected = row.AnyLineConnected;
        ras.Lines.clear();
        if (row.State != 0) Connect(1, row.State);
        const DialChoices choices = dialing.Choices();
        EXPECT_EQ(choices.HangUp, row.HangUp) << &row - rows;
        EXPECT_EQ(choices.Quick, row.HangUp ? "" : "Work") << &row - rows;
    }
    ras.EntriesErrors = {0, 608};
    ras.Lines.clear();
    EXPECT_EQ(dialing.Choices().Entries, Lines()) << "names that could not be read";
    TakeBoxes();
}

} // namespace
