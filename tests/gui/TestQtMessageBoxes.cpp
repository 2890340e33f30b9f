#include "dialogs/MessageText.h"
#include "dialogs/QtMessageBoxes.h"
#include "fakes/CoreFixture.h"
#include "gui/WhenPopupShows.h"

using namespace korvalin;

namespace {

class QtMessageBoxesTest : public CoreFixture {
  protected:
    // Shows a question and does this to it as soon as it is there.
    MessageAnswer Ask(const std::function<void(frmPopupMsg&)>& action,
                      MessageButtons buttons = MessageButtons::YesNo) {
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
    } const rows[] = {
        {Buttons::YesNo, click(0), Answer::Yes},
        {Buttons::YesNo, press(Qt::Key_Return), Answer::Yes},
        {Buttons::YesNo, press(Qt::Key_Escape), Answer::No},
        {Buttons::YesNo, takeAway, Answer::No},
        {Buttons::Ok, press(Qt::Key_Escape), Answer::Ok},
        {Buttons::YesNoDefaultNo, press(Qt::Key_Return), Answer::No},
        {Buttons::YesNoDefaultNo, press(Qt::Key_Escape), Answer::No},
        {Buttons::YesNoDefaultNo, click(0), Answer::Yes},
        {Buttons::YesNoCancel, click(2), Answer::Cancel},
        {Buttons::YesNoCancel, press(Qt::Key_Return), Answer::No},
        {Buttons::YesNoCancel, press(Qt::Key_Escape), Answer::Cancel},
        {Buttons::YesNoCancel, takeAway, Answer::Cancel},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Ask(row.Action, row.Choice), row.Expected) << &row - rows;
    Lines kept;
    messages.NobodyAnswers([&](const std::string& text) { kept.push_back(text); });
    EXPECT_EQ(messages.Show("question", "", MessageIcon::Question, Buttons::YesNoCancel), Answer::No);
    EXPECT_EQ(messages.Show("message", "", MessageIcon::Critical, Buttons::Ok), Answer::Ok);
    EXPECT_EQ(kept, Lines{"message"});
}

TEST_F(QtMessageBoxesTest, ShowsTextsAsTheyAreInTheProgramsLanguage) {
    const auto look = [](const char* captions) {
        return [captions](frmPopupMsg& box) {
            const auto* message = box.findChild<MessageText*>();
            EXPECT_EQ(message->toPlainText(), QStringLiteral("<b>Größe</b>\n&& more"));
            EXPECT_TRUE(message->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Korvalin – Frage"));
            EXPECT_EQ(PopupCaptions(box), captions);
        };
    };
    Ask(look("&Yes|&No|&Cancel"), MessageButtons::YesNoCancel);
    messages.Plug(language);
    Ask(look("&Yes|&No"));
    settings.SetReg("Language", "GER");
    std::filesystem::copy_file(KORVALIN_RESOURCES "/lang/Korvalin.lng", programFolder / "Korvalin.lng");
    ASSERT_TRUE(language.InitProgramTexts());
    Ask(look("&Ja|&Nein|&Abbrechen"), MessageButtons::YesNoCancel);
}

TEST_F(QtMessageBoxesTest, StandsAboveAllWindowsAndSurvivesTheEndOfItsOwn) {
    auto window = std::make_unique<QWidget>(nullptr, Qt::Window | Qt::WindowStaysOnTopHint);
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const MessageAnswer answer = Ask([&](frmPopupMsg& box) {
        EXPECT_TRUE(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        ASSERT_EQ(box.parentWidget(), window.get());
        window.reset();
    });
    EXPECT_EQ(answer, MessageAnswer::No);
}

} // namespace
