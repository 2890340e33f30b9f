#include "dialogs/MessageText.h"
#include "dialogs/MessageTexts.h"
#include "dialogs/QtMessageBoxes.h"
#include "dialogs/frmMessage.h"
#include "fakes/CoreFixture.h"
#include "forms/Twips.h"
#include "gui/WhenPopupShows.h"

using namespace korvalin;

namespace {

int Show(const PopupMessage& message, const std::function<void(frmPopupMsg&)>& action) {
    const MessageTexts english;
    const WhenPopupShows popup(action);
    return frmPopupMsg::ShowMsg(english, message);
}

TEST(PopupMsg, SettlesIconCaptionsAndTheCancelButton) {
    constexpr int ignored = -1;
    struct {
        int Style;
        const char* Meaning;
        QStyle::StandardPixmap Icon;
        std::array<const char*, 3> Given;
        const char* Captions;
        int Cancel;
    } const rows[] = {
        {16, "Error", QStyle::SP_MessageBoxCritical, {"", "", ""}, "OK", ignored},
        {32, "Question", QStyle::SP_MessageBoxQuestion, {"A", "", "&Cancel"}, "A|&Cancel", 1},
        {48, "Warning", QStyle::SP_MessageBoxWarning, {"&Cancel", "&No", "C"}, "&Cancel|&No|C", 0},
        {64, "Note", QStyle::SP_MessageBoxInformation, {"A", "&No", "&Cancel"}, "A|&No|&Cancel", 1},
        {0, "Note", QStyle::SP_MessageBoxInformation, {"A", "No", "cancel"}, "A|No|cancel", ignored},
    };
    for (const auto& row : rows) {
        PopupMessage message{QStringLiteral("text"), row.Style};
        for (std::size_t i = 0; i < row.Given.size(); ++i)
            message.Captions[i] = QLatin1String(row.Given[i]);
        const int answer = Show(message, [&](frmPopupMsg& box) {
            const auto* icon = box.findChild<QLabel*>(QStringLiteral("picIcon"));
            const QPixmap shown = icon->pixmap(Qt::ReturnByValue);
            EXPECT_EQ(shown.toImage(), box.style()->standardIcon(row.Icon).pixmap(shown.size()).toImage());
            EXPECT_EQ(icon->accessibleName(), QLatin1String(row.Meaning));
            EXPECT_EQ(PopupCaptions(box), row.Captions);
            EXPECT_EQ(box.focusWidget(), PopupButton(box, 0));
            QTest::keyClick(&box, Qt::Key_Escape);
            EXPECT_EQ(box.isVisible(), row.Cancel == ignored);
        });
        EXPECT_TRUE(row.Cancel == ignored || answer == row.Cancel) << row.Captions;
    }
}

TEST(PopupMsg, FitsItsTextAndTheScreen) {
    const QString sentence = QStringLiteral("A sentence that is a part of a longer text. ");
    struct {
        QString Shown;
        int Lines; // at least
        bool Scrolls;
    } const rows[] = {{sentence, 1, false},
                      {sentence.repeated(10), 4, false},
                      {sentence.repeated(1000), 4, true},
                      {sentence + QString(300, QLatin1Char('/')), 3, false}};
    for (const auto& row : rows) {
        Show({row.Shown}, [&](frmPopupMsg& box) {
            const auto place = &row - rows;
            const QRect screen = box.screen()->availableGeometry();
            EXPECT_TRUE(screen.contains(box.geometry())) << place;
            EXPECT_LE((box.geometry().center() - screen.center()).manhattanLength(), 4);
            const auto* text = box.findChild<MessageText*>();
            EXPECT_EQ(text->verticalScrollBar()->isVisible(), row.Scrolls) << place;
            EXPECT_EQ(text->viewport()->height() < text->document()->size().height(), row.Scrolls) << place;
            EXPECT_LE(text->document()->idealWidth(), text->viewport()->width()) << "nothing cut: " << place;
            EXPECT_GE(text->document()->size().height(), row.Lines * text->fontMetrics().height()) << place;
        });
    }
}

TEST(Message, WrapsALongTextNamesAnEmptyOneAndIsClosedByItsButtonOnly) {
    const MessageTexts english;
    frmMessage message{english};
    const auto* label = message.findChild<MessageText*>();
    auto* cmdOK = message.findChild<QPushButton*>(QStringLiteral("cmdOK"));
    for (const QString& text : {QString(), QStringLiteral("<b>short</b>"), QString(300, QLatin1Char('x'))}) {
        message.Msg_Text = text;
        message.show();
        EXPECT_EQ(label->toPlainText(), text.isEmpty() ? QStringLiteral("no text") : text);
        EXPECT_EQ(label->height() > 2 * label->fontMetrics().height(), text.size() > 100);
        EXPECT_TRUE(cmdOK->y() > label->geometry().bottom() && message.rect().contains(cmdOK->geometry()));
        message.close();
        EXPECT_TRUE(message.isVisible());
        QTest::mouseClick(cmdOK, Qt::LeftButton);
        EXPECT_FALSE(message.isVisible());
    }
    const QSignalSpy chosen(&message, &frmMessage::ActionChosen);
    for (const char* caption : {"", "Show &sums"}) {
        message.Msg_Action = QLatin1String(caption);
        message.show();
        QTest::mouseClick(label->viewport(), Qt::LeftButton);
        EXPECT_EQ(message.isVisible(), message.Msg_Action.isEmpty()) << "a click on the text";
    }
    message.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&message));
    QTest::keyClick(&message, Qt::Key_S, Qt::AltModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return chosen.size() == 2 && !message.isVisible(); }));
    message.Msg_Options = MessageWaits;
    message.show();
    QTest::keyClick(&message, Qt::Key_Return);
    EXPECT_TRUE(message.isVisible() && !cmdOK->isVisible());
}

class QtMessageBoxesTest : public CoreFixture {
  protected:
    // Shows a question and does this to it as soon as it is there.
    MessageAnswer Ask(MessageButtons buttons, const std::function<void(frmPopupMsg&)>& action) {
        const WhenPopupShows popup(action);
        return messages.Show("<b>Größe</b>\r\n&& more", "Korvalin – Frage", MessageIcon::Warning, buttons);
    }

    QtMessageBoxes messages;
};

TEST_F(QtMessageBoxesTest, AnswersWhatTheUserChose) {
    const auto click = [](int index) {
        return [index](frmPopupMsg& box) { QTest::mouseClick(PopupButton(box, index), Qt::LeftButton); };
    };
    const auto press = [](Qt::Key key) {
        return [key](frmPopupMsg& box) { QTest::keyClick(box.focusWidget(), key); };
    };
    const auto takeAway = [](frmPopupMsg& box) { box.hide(); }; // as the program's end does
    using Buttons = MessageButtons;
    using Answer = MessageAnswer;
    struct {
        MessageButtons Choice;
        std::function<void(frmPopupMsg&)> Action;
        MessageAnswer Expected;
    } const rows[] = {{Buttons::YesNo, press(Qt::Key_Return), Answer::Yes},
                      {Buttons::YesNo, press(Qt::Key_Escape), Answer::No},
                      {Buttons::YesNo, takeAway, Answer::No},
                      {Buttons::Ok, press(Qt::Key_Escape), Answer::Ok},
                      {Buttons::YesNoDefaultNo, press(Qt::Key_Return), Answer::No},
                      {Buttons::YesNoDefaultNo, click(0), Answer::Yes},
                      {Buttons::YesNoCancel, click(2), Answer::Cancel},
                      {Buttons::YesNoCancel, press(Qt::Key_Return), Answer::No},
                      {Buttons::YesNoCancel, takeAway, Answer::Cancel}};
    for (const auto& row : rows)
        EXPECT_EQ(Ask(row.Choice, row.Action), row.Expected) << &row - rows;
    Lines kept;
    messages.NobodyAnswers([&](const std::string& text) { kept.push_back(text); });
    EXPECT_EQ(messages.Show("question", "", MessageIcon::Question, Buttons::YesNoCancel), Answer::No);
    EXPECT_EQ(messages.Show("message", "", MessageIcon::Critical, Buttons::Ok), Answer::Ok);
    EXPECT_EQ(kept, Lines{"message"});
}

TEST_F(QtMessageBoxesTest, ShowsTextsAsTheyAreInTheProgramsLanguage) {
    settings.SetReg("Language", "GER");
    folder.Write("program/Korvalin.lng", WholeTexts());
    ASSERT_TRUE(language.InitProgramTexts());
    for (const char* captions : {"&Yes|&No|&Cancel", "&Ja|&Nein|&Abbrechen"}) {
        Ask(MessageButtons::YesNoCancel, [captions](frmPopupMsg& box) {
            const auto* message = box.findChild<MessageText*>();
            EXPECT_EQ(message->toPlainText(), QStringLiteral("<b>Größe</b>\n&& more"));
            EXPECT_TRUE(message->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Korvalin – Frage"));
            EXPECT_EQ(PopupCaptions(box), captions);
        });
        messages.Plug(language);
    }
}

TEST_F(QtMessageBoxesTest, StandsAboveAllWindowsAndSurvivesTheEndOfItsOwn) {
    auto window = std::make_unique<QWidget>(nullptr, Qt::Window | Qt::WindowStaysOnTopHint);
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const MessageAnswer answer = Ask(MessageButtons::YesNo, [&](frmPopupMsg& box) {
        EXPECT_TRUE(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        ASSERT_EQ(box.parentWidget(), window.get());
        window.reset();
    });
    EXPECT_EQ(answer, MessageAnswer::No);
}

} // namespace
