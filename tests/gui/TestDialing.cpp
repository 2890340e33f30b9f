#include "dialogs/QtDialDialog.h"
#include "dialogs/QtMessageBoxes.h"
#include "dialogs/frmDial.h"
#include "gui/MainWindowFixture.h"
#include "gui/WhenPopupShows.h"
#include "lang/ApplyFormTexts.h"

using namespace korvalin;

namespace {

/// The main window over a phone book; dialing is done by the test, with the real dial windows.
class DialingWindow : public MainWindow {
  protected:
    DialingWindow() {
        internet.State.Flags |= InternetRasInstalled;
        internet.OnDial = [this](const std::string& entry) {
            dialog.Plug(program->language);
            dialog.Begin(entry);
            whileDialing();
            dialog.End();
        };
    }
    void Add(const std::string& name, const std::string& number = "123") {
        ras.Entries.push_back({name, {"", number, "modem"}});
    }
    QMenu* LogIn() { return window->findChild<QMenu*>(QStringLiteral("mnuLogIn")); }
    QMenu* Menu() { return window->findChild<QMenu*>(QStringLiteral("mnuTrayIcon")); }
    // The captions of what can be done about dial-up lines, in the menu's order.
    std::string Offered() {
        QStringList captions;
        for (const char* name : {"mnuLogInQuick", "mnuLogOut"})
            if (Item(name)->isVisible()) captions << Item(name)->text();
        if (LogIn()->menuAction()->isVisible()) {
            const auto items = LogIn()->actions();
            for (const QAction* item : items)
                captions << item->text();
        }
        return captions.join(QLatin1Char('|')).toStdString();
    }
    void OpenMenu() {
        Menu()->popup(window->pos());
        ASSERT_TRUE(Menu()->isVisible());
    }
    // Chooses an entry and waits until what it does is done.
    void Do(const char* name) {
        Choose(name);
        ASSERT_TRUE(QTest::qWaitFor([&] { return Item(name) == nullptr || !program->dialing.Busy(); }));
        QCoreApplication::processEvents();
    }
    std::vector<std::string> Dialed() {
        std::vector<std::string> names;
        for (const auto& [entry, flags] : internet.Dials)
            names.push_back(entry);
        return names;
    }
    static QDialog* DialWindow() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->isVisible() && widget->objectName() == QLatin1String("frmDial"))
                return qobject_cast<QDialog*>(widget);
        return nullptr;
    }
    static std::string TextOf(const QWidget* window, const char* label) {
        return window->findChild<QLabel*>(QString::fromLatin1(label))->text().toStdString();
    }

    QtDialDialog dialog;
    std::function<void()> whileDialing = [] {};
};

TEST_F(DialingWindow, TheMenuOffersWhatCanBeDoneAlsoWhileItIsOpen) {
    Start();
    EXPECT_TRUE(Offered().empty() && !Item("mnuTrennEinwahl")->isVisible());
    Add("Work & Co");
    OpenMenu();
    EXPECT_TRUE(Offered() == "Work && Co" && Item("mnuTrennEinwahl")->isVisible()) << Offered();
    Add("Home");
    EXPECT_TRUE(QTest::qWaitFor([&] {
        clock.Advance(1.001);
        return Offered() == "Home|Work && Co";
    }));
    LogIn()->popup(window->pos());
    settings.SetReg("LineLast", "Work & Co");
    window->RefreshDialMenus();
    program->language.UseLanguage("GER");
    ApplyTextsToLoadedForms(program->language);
    EXPECT_EQ(LogIn()->title().toStdString() + "|" + Offered(), "Ein&wählen|Work && Co|Home|Work && Co");
    ras.Lines.push_back({{1, "Home", "Modem"}, {}, RascsConnected});
    internet.State.Flags = InternetConnectionModem | InternetRasInstalled;
    network.Rows.clear();
    Run(2);
    EXPECT_EQ(Offered(), "Verbindung &trennen");
    EXPECT_TRUE(!LogIn()->isVisible() && Item("mnuTrennEinwahl")->isVisible());
    Menu()->close();
    Do("mnuLogOut");
    EXPECT_EQ(ras.HungUp, std::vector<std::int32_t>{1});
    Run(1);
    EXPECT_EQ(Offered(), "Work && Co|Home|Work && Co");
}

TEST_F(DialingWindow, NamesOfEveryKindAreShownAndDialed) {
    const Lines names = {"&a&&b", "a\tb\nc", std::string(299, 'x') + "<b>"};
    for (const std::string& name : names)
        Add(name);
    for (int i = 0; i < 100; ++i)
        Add("y" + std::to_string(i));
    Start();
    for (const char* item : {"mnuLogInLine1", "mnuLogInLine2", "mnuLogInLine3"})
        Do(item);
    EXPECT_EQ(Dialed(), names) << "they are sorted like this";
    EXPECT_EQ(Item("mnuLogInLine1")->text(), QStringLiteral("&&a&&&&b"));
    EXPECT_EQ(Item("mnuLogInLine2")->text(), QStringLiteral("a\uFFFDb\uFFFDc"));
    EXPECT_LT(Item("mnuLogInLine3")->text().size(), 200);
    EXPECT_TRUE(Item("mnuLogInLine3")->toolTip().contains(QStringLiteral("xxx&lt;b&gt;")));
    LogIn()->popup(QPoint(0, 0));
    EXPECT_LE(LogIn()->height(), window->screen()->size().height()) << "it scrolls";
    QTest::keyClick(LogIn(), Qt::Key_End);
    QTest::keyClick(LogIn(), Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Dialed().back() == "y99"; }));
}

TEST_F(DialingWindow, TheProgramsEndAnswersTheQuestionWithCancel) {
    settings.SetReg("Phone_Home", "111");
    Add("Home", "222");
    Start();
    QtMessageBoxes messages;
    boxes.AnswersBy = [&](const auto&... question) { return messages.Show(question...); };
    const WhenPopupShows popup([&](frmPopupMsg&) { Choose("mnuBeenden"); });
    Do("mnuLogInLine1");
    EXPECT_EQ(settings.Get(Keys::Phone("Home")) + std::to_string(internet.Dials.size()), "1110");
    boxes.Shown.clear();
}

TEST_F(DialingWindow, TheDialWindowTellsTheStageAndCancels) {
    const std::function<void(QDialog&)> ways[] = {
        [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); },
        [](QDialog& box) { box.findChild<QPushButton*>(QStringLiteral("cmdCancel"))->click(); },
        [](QDialog& box) { delete &box; }}; // as the end of its parent does
    Add("Home <b>");
    Start();
    internet.DialResults = {ErrorCancelled, ErrorCancelled, ErrorCancelled};
    for (const auto& cancel : ways) {
        whileDialing = [&] {
            const QPointer<QDialog> box = DialWindow();
            ASSERT_TRUE(box && QTest::qWaitForWindowActive(box));
            EXPECT_EQ(TextOf(box, "lblEntry"), "Home <b>");
            std::string stages;
            for (const DialStage stage : {DialStage::Preparing, DialStage::Connecting, DialStage::LoggingIn,
                                          DialStage::GettingAddress}) {
                dialog.ShowStage(stage);
                stages += TextOf(box, "lblStage") + "|";
            }
            EXPECT_EQ(stages, "Preparing the connection …|Connecting …|Logging in …|Getting an address …|");
            EXPECT_FALSE(dialog.Cancelled());
            cancel(*box);
            EXPECT_TRUE(dialog.Cancelled()) << &cancel - ways;
            dialog.ShowStage(DialStage::Connecting);
            EXPECT_TRUE(!box || (box->isVisible() && TextOf(box, "lblStage") == "Canceling …"))
                << "until whoever dials is done";
            OpenMenu(); // rebuilds it
            Menu()->close();
            for (const QAction* item : {LogIn()->menuAction(), Item("mnuLogOut"), Item("mnuLogInQuick")})
                EXPECT_FALSE(item->isEnabled());
        };
        Do("mnuLogInLine1");
        EXPECT_FALSE(dialog.Cancelled());
    }
    EXPECT_EQ(internet.Dials.size(), 3U);
}

TEST_F(DialingWindow, AFailureIsTold) {
    dialog.Plug(language); // without texts: the English ones
    const std::pair<int, std::string> rows[] = {
        {ErrorCannotFindPhonebookEntry, "This entry is no longer in the phone book."},
        {ErrorNoCarrier, "The remote station does not answer."},
        {ErrorNoDialtone, "There is no dial tone."},
        {ErrorAuthenticationFailure, "The user name or the password was not accepted."},
        {619, "Please check the modem and the details of this entry in the phone book, then try again."}};
    for (const auto& [error, text] : rows) {
        const WhenPopupShows popup([&, text = text](frmPopupMsg& box) {
            EXPECT_EQ(box.findChild<QTextEdit*>()->toPlainText().toStdString(),
                      "<b>Home\nThe connection could not be established.\n" + text);
            EXPECT_EQ(PopupCaptions(box), "OK");
        });
        dialog.ShowFailure("<b>Home", error);
    }
}

TEST_F(DialingWindow, TheLoginPromptHidesThePasswordAndForgetsIt) {
    const auto ask = [&](const std::function<void(QDialog&, QLineEdit&)>& action) {
        const WhenPopupShows<QDialog> prompt(
            [&](QDialog& box) { action(box, *box.findChild<QLineEdit*>(QStringLiteral("txtPassword"))); });
        return dialog.AskLogin("Home", "alice");
    };
    const auto answer = ask([](QDialog& box, QLineEdit& password) {
        QTest::keyClicks(box.focusWidget(), QStringLiteral("Sesame "));
        password.insert(QStringLiteral("öffne"));
        EXPECT_FALSE(password.displayText().contains(QLatin1Char('S')));
        QTest::keyClick(&password, Qt::Key_Return);
    });
    EXPECT_EQ(answer.value().UserName + "|" + answer.value().Password, "alice|Sesame öffne");
    const auto giveUp = [](QDialog& box, QLineEdit& password) {
        EXPECT_EQ(password.text(), QString()) << "whatever was typed before";
        QTest::keyClick(&box, Qt::Key_Escape);
    };
    EXPECT_FALSE(ask(giveUp).has_value());
    dialog.Begin("Home");
    EXPECT_FALSE(ask([&](QDialog&, QLineEdit&) { dialog.End(); }).has_value())
        << "which takes the prompt along";
}

} // namespace
