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
    void Add(const std::string& name, const std::string& number = "123",
             const std::string& device = "modem") {
        ras.Entries.push_back({name, {"", number, device}});
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
    template <typename Window = QDialog>
    Window* Shown(const char* name) {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->isVisible() && widget->objectName() == QLatin1String(name))
                return qobject_cast<Window*>(widget);
        ADD_FAILURE() << name << " is not shown";
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
    EXPECT_EQ(Offered(), "");
    EXPECT_FALSE(Item("mnuTrennEinwahl")->isVisible());
    Add("Work & Co");
    OpenMenu();
    EXPECT_EQ(Offered(), "Work && Co");
    EXPECT_TRUE(Item("mnuTrennEinwahl")->isVisible());
    Add("Home");
    EXPECT_TRUE(QTest::qWaitFor([&] {
        clock.Advance(1.001);
        return Offered() == "Home|Work && Co";
    }));
    LogIn()->popup(window->pos());
    settings.SetReg("LineLast", std::string("Work & Co"));
    window->RefreshDialMenus();
    EXPECT_EQ(Offered(), "Work && Co|Home|Work && Co");
    program->language.UseLanguage("GER");
    ApplyTextsToLoadedForms(program->language);
    EXPECT_EQ(LogIn()->title().toStdString() + "|" + Offered(), "Ein&wählen|Work && Co|Home|Work && Co");
    EXPECT_TRUE(LogIn()->isVisible());
    ras.Lines.push_back({{1, "Home", "Modem"}, {}, RascsConnected});
    internet.State.Flags = InternetConnectionModem | InternetRasInstalled;
    network.Rows.clear();
    Run(2);
    EXPECT_EQ(Offered(), "Verbindung &trennen");
    EXPECT_FALSE(LogIn()->isVisible());
    EXPECT_TRUE(Item("mnuTrennEinwahl")->isVisible());
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
    EXPECT_EQ(LogIn()->actions().size(), 103);
    for (const char* item : {"mnuLogInLine1", "mnuLogInLine2", "mnuLogInLine3"})
        Do(item);
    EXPECT_EQ(Dialed(), names) << "they are sorted like this";
    EXPECT_EQ(Item("mnuLogInLine1")->text(), QStringLiteral("&&a&&&&b"));
    EXPECT_EQ(Item("mnuLogInLine2")->text(), QStringLiteral("a\uFFFDb\uFFFDc"));
    EXPECT_LT(Item("mnuLogInLine3")->text().size(), 200);
    EXPECT_TRUE(Item("mnuLogInLine3")->toolTip().contains(QStringLiteral("xxx&lt;b&gt;")));
    LogIn()->popup(QPoint(0, 0));
    EXPECT_LE(LogIn()->height(), window->screen()->size().height()) << "it scrolls";
    EXPECT_LE(LogIn()->width(), window->screen()->size().width());
    QTest::keyClick(LogIn(), Qt::Key_End);
    QTest::keyClick(LogIn(), Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Dialed().back() == "y99"; }));
}

TEST_F(DialingWindow, TheProgramsEndAnswersTheQuestionWithCancel) {
    settings.SetReg("Phone_Home", std::string("111"));
    Add("Home", "222");
    Start();
    QtMessageBoxes messages;
    boxes.AnswersBy = [&](const auto&... question) { return messages.Show(question...); };
    const WhenPopupShows popup([&](frmPopupMsg&) { Choose("mnuBeenden"); });
    Do("mnuLogInLine1");
    EXPECT_EQ(internet.Dials.size(), 0U);
    EXPECT_EQ(settings.Get(Keys::Phone("Home")), "111");
    boxes.Shown.clear();
}

TEST_F(DialingWindow, AnEndOfTheWindowBelowCancels) {
    Start();
    QDialog below;
    below.show();
    below.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&below));
    dialog.Begin("Home");
    EXPECT_EQ(Shown("frmDial")->parentWidget(), &below) << "so that it stays above";
    EXPECT_FALSE(dialog.Cancelled());
    delete Shown("frmDial"); // as the end of its parent does
    EXPECT_TRUE(dialog.Cancelled());
    dialog.ShowStage(DialStage::Connecting);
    dialog.End();
    EXPECT_FALSE(dialog.Cancelled());
}

TEST_F(DialingWindow, TheDialWindowTellsTheStageAndCancels) {
    const std::function<void(QDialog&)> ways[] = {
        [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); },
        [](QDialog& box) {
            QTest::mouseClick(box.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
        }};
    Add("Home <b>");
    Start();
    internet.DialResults = {ErrorCancelled, ErrorCancelled};
    for (const auto& cancel : ways) {
        whileDialing = [&] {
            auto* box = Shown("frmDial");
            ASSERT_NE(box, nullptr);
            EXPECT_TRUE(box->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
            EXPECT_EQ(TextOf(box, "lblEntry"), "Home <b>");
            std::string stages;
            for (const DialStage stage : {DialStage::Preparing, DialStage::Connecting, DialStage::LoggingIn,
                                          DialStage::GettingAddress}) {
                dialog.ShowStage(stage);
                stages += TextOf(box, "lblStage") + "|";
            }
            EXPECT_EQ(stages, "Preparing the connection …|Connecting …|Logging in …|Getting an address …|");
            EXPECT_FALSE(dialog.Cancelled());
            EXPECT_TRUE(QTest::qWaitForWindowActive(box));
            cancel(*box);
            EXPECT_TRUE(dialog.Cancelled()) << &cancel - ways;
            dialog.ShowStage(DialStage::Connecting);
            EXPECT_EQ(TextOf(box, "lblStage"), "Canceling …");
            EXPECT_TRUE(box->isVisible()) << "until whoever dials is done";
        };
        Do("mnuLogInLine1");
        EXPECT_FALSE(dialog.Cancelled());
    }
    EXPECT_EQ(internet.Dials.size(), 2U);
}

TEST_F(DialingWindow, AFailureIsTold) {
    Start();
    dialog.Plug(program->language);
    const std::string failed = "<b>Home\nThe connection could not be established.\n";
    const std::pair<int, std::string> rows[] = {
        {ErrorCannotFindPhonebookEntry, "This entry is no longer in the phone book.\nError 623"},
        {ErrorNoCarrier, "The remote station does not answer.\nError 678"},
        {ErrorNoDialtone, "There is no dial tone.\nError 680"},
        {ErrorAuthenticationFailure, "The user name or the password was not accepted.\nError 691"},
        {619, "Error 619"}};
    for (const auto& [error, text] : rows) {
        const WhenPopupShows popup([&, expected = failed + text](frmPopupMsg& box) {
            EXPECT_EQ(box.findChild<QTextEdit*>()->toPlainText().toStdString(), expected);
            EXPECT_EQ(PopupCaptions(box), "OK");
            QTest::keyClick(&box, Qt::Key_Escape);
            EXPECT_FALSE(box.isVisible());
        });
        dialog.ShowFailure("<b>Home", error);
    }
}

TEST_F(DialingWindow, TheLoginPromptHidesThePasswordAndForgetsIt) {
    Start();
    dialog.Plug(program->language);
    const auto ask = [&](const std::string& name, const std::function<void(QDialog&)>& action) {
        const WhenPopupShows<QDialog> prompt(action);
        return dialog.AskLogin("Home", name);
    };
    const auto field = [](QDialog& box, const char* name) {
        return box.findChild<QLineEdit*>(QString::fromLatin1(name));
    };
    const auto answer = ask("alice", [&](QDialog& box) {
        EXPECT_EQ(TextOf(&box, "lblEntry"), "Home");
        EXPECT_EQ(box.focusWidget(), field(box, "txtPassword"));
        QTest::keyClicks(box.focusWidget(), QStringLiteral("Sesame "));
        field(box, "txtPassword")->insert(QStringLiteral("öffne"));
        EXPECT_FALSE(field(box, "txtPassword")->displayText().contains(QLatin1Char('S')));
        QTest::keyClick(box.focusWidget(), Qt::Key_Return);
    });
    ASSERT_TRUE(answer.has_value());
    EXPECT_EQ(answer->UserName + "|" + answer->Password, "alice|Sesame öffne");
    EXPECT_FALSE(ask("", [&](QDialog& box) {
                     EXPECT_EQ(box.focusWidget(), field(box, "txtUser"));
                     EXPECT_EQ(field(box, "txtPassword")->text(), QString()) << "whatever was typed before";
                     QTest::keyClick(&box, Qt::Key_Escape);
                 }).has_value());
    dialog.Begin("Home");
    EXPECT_FALSE(ask("", [&](QDialog& box) {
                     EXPECT_EQ(box.parentWidget(), Shown("frmDial"));
                     dialog.End(); // takes the prompt along
                 }).has_value());
}

TEST_F(DialingWindow, WhileItDialsNothingElseBeginsAndTheProgramMayEnd) {
    Add("Home");
    Add("Work");
    Start();
    whileDialing = [&] {
        for (const QAction* item : {LogIn()->menuAction(), Item("mnuLogOut"), Item("mnuLogInQuick")})
            EXPECT_FALSE(item->isEnabled());
        Item("mnuLogInLine2")->trigger(); // a desktop that draws the menu itself may be late
        ras.Entries.erase(ras.Entries.begin());
        OpenMenu(); // and rebuilds it
        EXPECT_FALSE(LogIn()->menuAction()->isEnabled());
        Menu()->close();
        Choose("mnuBeenden");
        EXPECT_TRUE(dialog.Cancelled());
        QCoreApplication::processEvents();
    };
    internet.DialResults = {ErrorAuthenticationFailure};
    Do("mnuLogInLine1");
    EXPECT_EQ(Dialed(), Lines{"Home"}) << "no further attempt after the program's end";
    EXPECT_EQ(closings, std::vector<int>{static_cast<int>(CloseReason::Program)});
}

} // namespace
