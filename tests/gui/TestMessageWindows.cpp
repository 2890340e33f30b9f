#include "dialogs/MessageText.h"
#include "dialogs/MessageTexts.h"
#include "dialogs/frmMessage.h"
#include "fakes/CoreFixture.h"
#include "forms/Twips.h"
#include "gui/WhenPopupShows.h"

using namespace korvalin;

namespace {

QLabel* Label(const QWidget& window, const char* name) {
    return window.findChild<QLabel*>(QString::fromLatin1(name));
}

int Show(const PopupMessage& message, const std::function<void(frmPopupMsg&)>& action) {
    const MessageTexts english;
    const WhenPopupShows popup(action);
    return frmPopupMsg::ShowMsg(english, message);
}

TEST(PopupMsg, ShowsTheIconOfItsStyle) {
    const std::pair<int, QStyle::StandardPixmap> rows[] = {{16, QStyle::SP_MessageBoxCritical},
                                                           {32, QStyle::SP_MessageBoxQuestion},
                                                           {48, QStyle::SP_MessageBoxWarning},
                                                           {64, QStyle::SP_MessageBoxInformation},
                                                           {0, QStyle::SP_MessageBoxInformation}};
    QStringList meanings;
    for (const auto& [style, picture] : rows) {
        Show({QStringLiteral("text"), style}, [&, picture = picture](frmPopupMsg& box) {
            const QLabel* icon = Label(box, "picIcon");
            const QPixmap shown = icon->pixmap(Qt::ReturnByValue);
            EXPECT_EQ(shown.toImage(), box.style()->standardIcon(picture).pixmap(shown.size()).toImage());
            meanings << icon->accessibleName();
        });
    }
    EXPECT_EQ(meanings.join(QLatin1Char(' ')), QStringLiteral("Error Question Warning Note Note"));
}

TEST(PopupMsg, SettlesCaptionsAndTheCancelButton) {
    constexpr int ignored = -1;
    struct {
        std::array<const char*, 3> Given;
        const char* Captions;
        int Cancel;
    } const rows[] = {
        {{"", "", ""}, "OK", ignored},
        {{"A", "", "&Cancel"}, "A|&Cancel", 1},
        {{"&Cancel", "&No", "C"}, "&Cancel|&No|C", 0},
        {{"A", "&No", "&Cancel"}, "A|&No|&Cancel", 1},
        {{"A", "No", "cancel"}, "A|No|cancel", ignored},
    };
    for (const auto& row : rows) {
        PopupMessage message;
        for (std::size_t i = 0; i < row.Given.size(); ++i)
            message.Captions[i] = QLatin1String(row.Given[i]);
        const int answer = Show(message, [&](frmPopupMsg& box) {
            EXPECT_EQ(box.windowTitle(), QStringLiteral("Korvalin"));
            EXPECT_EQ(PopupCaptions(box), row.Captions);
            EXPECT_EQ(box.windowFlags().testFlag(Qt::WindowCloseButtonHint), row.Cancel != ignored);
            EXPECT_EQ(box.focusWidget(), PopupButton(box, 0));
            QTest::keyClick(&box, Qt::Key_Escape);
            EXPECT_EQ(box.isVisible(), row.Cancel == ignored);
        });
        if (row.Cancel != ignored) {
            EXPECT_EQ(answer, row.Cancel) << row.Captions;
        }
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
                      {QString(76, QLatin1Char('8')), 2, false},
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
            const int aroundIt = PixelsToTwips(box.height() - text->height());
            EXPECT_TRUE(row.Lines < 4 || std::abs(aroundIt - 1300) < 100) << aroundIt;
        });
    }
}

TEST(Message, CentresAShortTextWrapsALongOneAndNamesAnEmptyOne) {
    const MessageTexts english;
    frmMessage message{english};
    const auto* label = message.findChild<MessageText*>();
    auto* cmdOK = message.findChild<QPushButton*>(QStringLiteral("cmdOK"));
    const int margin = TwipsToPixels(200);
    const QString longText = QStringLiteral("word ").repeated(60);
    const std::pair<QString, QString> rows[] = {
        {QString(), QStringLiteral("no text")},
        {QStringLiteral("<b>short</b>"), QStringLiteral("<b>short</b>")},
        {longText, longText}};
    for (const auto& [given, shown] : rows) {
        const bool wraps = given == longText;
        message.Msg_Text = given;
        message.show();
        EXPECT_EQ(label->toPlainText(), shown);
        EXPECT_EQ(label->y(), margin);
        EXPECT_EQ(label->height() > 2 * label->fontMetrics().height(), wraps);
        EXPECT_EQ(label->x() == margin, wraps);
        EXPECT_NEAR(label->geometry().center().x(), message.width() / 2, 1);
        EXPECT_GT(cmdOK->y(), label->geometry().bottom());
        EXPECT_TRUE(message.rect().contains(cmdOK->geometry()));
        message.close();
        EXPECT_TRUE(message.isVisible()) << "only its button closes it";
        QTest::mouseClick(cmdOK, Qt::LeftButton);
        EXPECT_FALSE(message.isVisible());
    }
    message.Msg_Options = MessageWaits;
    message.show();
    EXPECT_FALSE(cmdOK->isVisible());
    QTest::keyClick(&message, Qt::Key_Return);
    EXPECT_TRUE(message.isVisible());
}

} // namespace
