#include "base/Date.h"
#include "platform/qt/QtLocale.h"
#include "platform/qt/QtMessageBoxes.h"
#include "platform/qt/QtScreen.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

namespace korvalin {
namespace {

TEST(QtLocale, TranslatesTheToolkitsPatterns) {
    struct {
        const char* Name;
        const char* Decimal;
        const char* Example; // of 5 March 2024, 14:07:09
    } const rows[] = {{"de_DE", ",", "05.03.2024 14:07:09"},
                      {"en_US", ".", "3/5/2024 2:07:09 PM"},
                      {"en_GB", ".", "05/03/2024 14:07:09"},
                      {"sv_SE", ",", "2024-03-05 14:07:09"},
                      {"ja_JP", ".", "2024/03/05 14:07:09"}};
    for (const auto& row : rows) {
        const Locale locale = ReadQtLocale(QLocale(QString::fromLatin1(row.Name)));
        const Date date = DateSerial(2024, 3, 5) + TimeSerial(14, 7, 9);
        EXPECT_EQ(locale.DecimalMark, row.Decimal) << row.Name;
        // Some versions of the locale data put a narrow blank before PM.
        QString shown = QString::fromStdString(FormatDateGeneral(date, locale)).simplified();
        shown.replace(QChar(0x202F), QLatin1Char(' '));
        EXPECT_EQ(shown.toStdString(), row.Example) << row.Name;
    }
    const Locale german = ReadQtLocale(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(german.MonthNames[2], "März");
    EXPECT_EQ(german.DayNames[0], "Sonntag");
}

// Answers the message box that is open, by the caption of its button.
void ClickWhenOpen(const QString& caption, QString& shownText) {
    QTimer::singleShot(0, [caption, &shownText] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        shownText = box->text();
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        for (QAbstractButton* button : box->buttons()) {
            if (button->text() == caption) return button->click();
        }
        box->reject();
        ADD_FAILURE() << "no button " << caption.toStdString();
    });
}

TEST(QtMessageBoxes, AnswersInTheProgramsLanguage) {
    QtMessageBoxes boxes;
    boxes.Plug([](MessageAnswer answer) {
        return answer == MessageAnswer::Yes ? QStringLiteral("Ja") : QStringLiteral("Nein");
    });
    QString text;
    ClickWhenOpen(QStringLiteral("Ja"), text);
    EXPECT_EQ(boxes.Show("<b>a & b</b>", "t", MessageIcon::Critical, MessageButtons::YesNo), MessageAnswer::Yes);
    EXPECT_EQ(text.toStdString(), "<b>a & b</b>");
    ClickWhenOpen(QStringLiteral("Nein"), text);
    EXPECT_EQ(boxes.Show("q", "t", MessageIcon::Question, MessageButtons::YesNo), MessageAnswer::No);
    QTimer::singleShot(0, [] { QApplication::activeModalWidget()->close(); });
    EXPECT_EQ(boxes.Show("q", "t", MessageIcon::Question, MessageButtons::YesNo), MessageAnswer::No);
}

TEST(QtMessageBoxes, AWaitingMessageComesAndGoes) {
    QtMessageBoxes boxes;
    const auto open = [] {
        const QWidgetList windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(), [](QWidget* window) {
            return qobject_cast<QMessageBox*>(window) != nullptr && window->isVisible();
        });
    };
    boxes.ShowWaiting("please wait", "t");
    EXPECT_TRUE(open());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    boxes.CloseWaiting();
    EXPECT_FALSE(open());
    boxes.CloseWaiting();
}

TEST(QtScreen, TellsThePrimaryScreen) {
    const auto size = QtScreen().Primary();
    ASSERT_TRUE(size);
    EXPECT_EQ(size->WidthPixels, QGuiApplication::primaryScreen()->geometry().width());
}

} // namespace
} // namespace korvalin
