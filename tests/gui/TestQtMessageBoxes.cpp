#include "platform/qt/QtMessageBoxes.h"

using namespace korvalin;

namespace {

class QtMessageBoxesTest : public testing::Test {
  protected:
    // Shows a question and does this to it as soon as it is there.
    MessageAnswer Ask(const std::function<void(QMessageBox&)>& action,
                      MessageButtons buttons = MessageButtons::YesNo) {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box == nullptr) return;
            timer.stop();
            action(*box);
        });
        timer.start(0);
        return boxes.Show("<b>Größe</b>\r\n&& more", "Korvalin – Frage", MessageIcon::Warning, buttons);
    }

    QtMessageBoxes boxes;
};

TEST_F(QtMessageBoxesTest, AnswersWhatTheUserChose) {
    const std::pair<std::function<void(QMessageBox&)>, MessageAnswer> rows[] = {
        {[](QMessageBox& box) { box.button(QMessageBox::No)->click(); }, MessageAnswer::No},
        {[](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }, MessageAnswer::Yes},
        {[](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }, MessageAnswer::No},
        {[](QMessageBox& box) { box.close(); }, MessageAnswer::No}};
    for (const auto& [action, expected] : rows)
        EXPECT_EQ(Ask(action), expected) << static_cast<int>(expected);
    EXPECT_EQ(Ask([](QMessageBox& box) { box.close(); }, MessageButtons::Ok), MessageAnswer::Ok);
}

TEST_F(QtMessageBoxesTest, ShowsTextsAsTheyAreInTheProgramsLanguage) {
    const auto look = [](const char* yes) {
        return [yes](QMessageBox& box) {
            EXPECT_EQ(box.text(), QStringLiteral("<b>Größe</b>\n&& more"));
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Korvalin – Frage"));
            EXPECT_EQ(box.icon(), QMessageBox::Warning);
            EXPECT_EQ(box.button(QMessageBox::Yes)->text(), QLatin1String(yes));
            box.close();
        };
    };
    Ask(look("&Yes"));
    boxes.Plug([](MessageAnswer answer) { return answer == MessageAnswer::Yes ? "&Ja" : "&Nein"; });
    Ask(look("&Ja"));
}

TEST_F(QtMessageBoxesTest, StandsAboveAWindowThatStaysOnTopAndSurvivesItsEnd) {
    auto window = std::make_unique<QWidget>(nullptr, Qt::Window | Qt::WindowStaysOnTopHint);
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const auto answer = Ask([&](QMessageBox& box) {
        EXPECT_TRUE(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        ASSERT_EQ(box.parentWidget(), window.get());
        window.reset();
    });
    EXPECT_EQ(answer, MessageAnswer::No);
}

} // namespace
