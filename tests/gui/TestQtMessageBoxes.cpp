#include "forms/Loaded.h"
#include "platform/qt/QtEvents.h"
#include "platform/qt/QtMessageBoxes.h"
#include "platform/qt/QtScreen.h"
#include "platform/qt/WaitingMessage.h"

namespace korvalin {
namespace {

class QtMessageBoxesTest : public ::testing::Test {
  protected:
    // Does this to the next box as soon as it is there.
    void OnNextBox(const std::function<void(QMessageBox&)>& action) {
        auto* timer = new QTimer(&owner_);
        QObject::connect(timer, &QTimer::timeout, timer, [timer, action] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box == nullptr) return;
            timer->stop();
            action(*box);
        });
        timer->start(0);
    }
    static WaitingMessage* FindWaiting() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* message = qobject_cast<WaitingMessage*>(window)) return message;
        }
        return nullptr;
    }

    QObject owner_;
    QtMessageBoxes boxes_;
};

void Click(QMessageBox& box, QMessageBox::StandardButton button) {
    QTest::mouseClick(box.button(button), Qt::LeftButton);
}

TEST_F(QtMessageBoxesTest, AnswersWhatTheUserChose) {
    const struct {
        const char* Name;
        MessageButtons Buttons;
        std::function<void(QMessageBox&)> Action;
        MessageAnswer Expected;
    } rows[] = {
        {"OK", MessageButtons::Ok, [](QMessageBox& box) { Click(box, QMessageBox::Ok); }, MessageAnswer::Ok},
        {"yes", MessageButtons::YesNo, [](QMessageBox& box) { Click(box, QMessageBox::Yes); },
         MessageAnswer::Yes},
        {"no", MessageButtons::YesNo, [](QMessageBox& box) { Click(box, QMessageBox::No); },
         MessageAnswer::No},
        {"Enter", MessageButtons::YesNo, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); },
         MessageAnswer::Yes},
        {"Escape", MessageButtons::YesNo, [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); },
         MessageAnswer::No},
        {"closed question", MessageButtons::YesNo, [](QMessageBox& box) { box.close(); }, MessageAnswer::No},
        {"closed message", MessageButtons::Ok, [](QMessageBox& box) { box.close(); }, MessageAnswer::Ok},
    };
    for (const auto& row : rows) {
        OnNextBox(row.Action);
        EXPECT_EQ(boxes_.Show("Go on?", "Korvalin", MessageIcon::Question, row.Buttons), row.Expected)
            << row.Name;
    }
}

TEST_F(QtMessageBoxesTest, ShowsTextsAsTheyAreInTheProgramsLanguage) {
    bool textsLoaded = false;
    boxes_.Plug([&](MessageAnswer answer) -> std::string {
        if (!textsLoaded) return "";
        return answer == MessageAnswer::Yes ? "&Ja" : "&Nein";
    });
    const struct {
        bool TextsLoaded;
        QString Yes, No;
    } rows[] = {{false, QStringLiteral("&Yes"), QStringLiteral("&No")},
                {true, QStringLiteral("&Ja"), QStringLiteral("&Nein")}};
    for (const auto& row : rows) {
        textsLoaded = row.TextsLoaded;
        OnNextBox([&](QMessageBox& box) {
            EXPECT_EQ(box.text(), QStringLiteral("<b>Größe</b>\n&& more"));
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Korvalin – Frage"));
            EXPECT_EQ(box.icon(), QMessageBox::Warning);
            EXPECT_FALSE(box.windowIcon().pixmap(48).isNull());
            EXPECT_EQ(box.button(QMessageBox::Yes)->text(), row.Yes);
            EXPECT_EQ(box.button(QMessageBox::No)->text(), row.No);
            box.close();
        });
        boxes_.Show("<b>Größe</b>\r\n&& more", "Korvalin – Frage", MessageIcon::Warning,
                    MessageButtons::YesNo);
    }
}

TEST_F(QtMessageBoxesTest, StandsAboveAWindowThatStaysOnTop) {
    for (const bool onTop : {false, true}) {
        QWidget window(nullptr, onTop ? Qt::Window | Qt::WindowStaysOnTopHint : Qt::Window);
        window.show();
        OnNextBox([&](QMessageBox& box) {
            EXPECT_EQ(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint), onTop);
            box.close();
        });
        boxes_.Show("text", "title", MessageIcon::Information, MessageButtons::Ok);
    }
}

TEST_F(QtMessageBoxesTest, SurvivesTheEndOfTheWindowBelow) {
    auto window = std::make_unique<QWidget>();
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    OnNextBox([&](QMessageBox& box) {
        ASSERT_EQ(box.parentWidget(), window.get());
        window.reset();
    });
    EXPECT_EQ(boxes_.Show("text", "title", MessageIcon::Critical, MessageButtons::YesNo), MessageAnswer::No);
}

TEST_F(QtMessageBoxesTest, KeepsTheWaitingMessageUntilItIsClosed) {
    boxes_.CloseWaiting();
    boxes_.ShowWaiting("<i>Please</i> wait", "Korvalin");
    WaitingMessage* message = FindWaiting();
    ASSERT_NE(message, nullptr);
    EXPECT_TRUE(message->isVisible());
    EXPECT_FALSE(message->isModal());
    EXPECT_TRUE(message->findChildren<QAbstractButton*>().isEmpty());
    QTest::keyClick(message, Qt::Key_Escape);
    message->close();
    EXPECT_TRUE(message->isVisible());
    boxes_.CloseWaiting();
    EXPECT_EQ(FindWaiting(), nullptr);
}

TEST(QtEvents, HandlesWhatIsPendingAndReturns) {
    QtEvents events;
    bool handled = false;
    QTimer::singleShot(0, [&] { handled = true; });
    events.ProcessPending();
    EXPECT_TRUE(handled);
    events.Sleep(-1);
}

TEST(QtScreen, TellsTheDesktopInLogicalPixels) {
    const auto size = QtScreen().Primary();
    ASSERT_TRUE(size);
    const QSize expected = QGuiApplication::primaryScreen()->size();
    EXPECT_EQ(QSize(size->WidthPixels, size->HeightPixels), expected);
    EXPECT_EQ(QtScreen().CurrentDisplayMode()->WidthTwips(), expected.width() * 15);
}

TEST(Loaded, KnowsWindowsByNameAndClosesTheOthers) {
    QWidget main;
    main.setObjectName(QStringLiteral("frmMain"));
    QWidget other;
    other.setObjectName(QStringLiteral("frmStatistik"));
    struct Refusing : QWidget {
        void closeEvent(QCloseEvent* event) override { event->ignore(); }
    } refusing;
    refusing.setObjectName(QStringLiteral("frmMessage"));
    for (QWidget* window : {&main, &other, static_cast<QWidget*>(&refusing)})
        window->show();
    QWidget child(&main);
    child.setObjectName(QStringLiteral("frmChild"));
    EXPECT_TRUE(IsFormLoaded("FRMSTATISTIK"));
    EXPECT_FALSE(IsFormLoaded("frmStat"));
    EXPECT_FALSE(IsFormLoaded("frmChild"));
    UnloadOtherForms(main);
    EXPECT_TRUE(main.isVisible());
    EXPECT_FALSE(other.isVisible());
    EXPECT_FALSE(refusing.isVisible());
}

} // namespace
} // namespace korvalin
