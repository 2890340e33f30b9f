#include "forms/Colors.h"
#include "forms/Twips.h"
#include "gui/MainWindowFixture.h"

using namespace korvalin;

namespace {

TEST_F(MainWindow, StartsWithTheChartOfTheMachinesTraffic) {
    Start();
    EXPECT_TRUE(window->isVisible());
    Run(30, 8000);
    EXPECT_EQ(program->infoTexts.RateDLText, "8.0");
    const QImage picture = Picture()->grab().toImage();
    bool curve = false;
    for (int y = 0; y < picture.height(); ++y)
        curve = curve || picture.pixelColor(picture.width() - 15, y) == ToColor(255); // the download
    EXPECT_TRUE(curve);
}

TEST_F(MainWindow, DrawsNothingInTheTaskbarAndIsUpToDateWhenItComesBack) {
    Start();
    Run(2, 1000);
    const QImage before = Picture()->Picture();
    window->showMinimized();
    Run(3, 8000);
    EXPECT_EQ(Picture()->Picture(), before);
    window->showNormal();
    EXPECT_NE(Picture()->Picture(), before);
}

TEST_F(MainWindow, FadesInToItsOpacity) {
    settings.SetReg("Opacity", 102);
    Start();
    EXPECT_LT(window->windowOpacity(), 0.2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(window->windowOpacity() - 0.4) < 0.005; }));
}

TEST_F(MainWindow, SeveralLinesCanBeChosenFromTheMenu) {
    network.Add("wlan & co", 70000, 500);
    Start();
    Run(2);
    ASSERT_NE(Item("mnuLines2"), nullptr);
    EXPECT_TRUE(Item("mnuLines1")->isChecked());
    EXPECT_EQ(Item("mnuLines2")->text(), QStringLiteral("wlan && co"));
    Choose("mnuLines2");
    EXPECT_TRUE(Item("mnuLines2")->isChecked());
    EXPECT_EQ(Setting(Keys::ChartLineNo), 2);
    EXPECT_EQ(program->infoTexts.LineIndex, 2U);
    network.Rows[0].Description = "lan0";
    network.Add("eth2", 5000, 0);
    Run(2);
    Choose("mnuLines3");
    network.Rows.pop_back();
    Run(1);
    EXPECT_EQ(Item("mnuLines1")->text(), QStringLiteral("lan0"));
    EXPECT_TRUE(Item("mnuLines2")->isChecked()) << "the last line, when the chosen one is gone";
    network.Rows.pop_back();
    Run(1);
    EXPECT_FALSE(Item("mnuLines0")->isVisible());
    EXPECT_EQ(window->findChild<QAction*>(QStringLiteral("mnuLines1")), nullptr);
}

TEST_F(MainWindow, TheMouseMovesItByItsHandleAndPutsItAway) {
    Start();
    Run(1);
    const QPoint before = window->pos();
    QTest::mousePress(Handle(), Qt::LeftButton, {}, QPoint(50, 40));
    QMouseEvent move(QEvent::MouseMove, QPointF(30, 25), Handle()->mapToGlobal(QPointF(30, 25)), Qt::NoButton,
                     Qt::LeftButton, {});
    QApplication::sendEvent(Handle(), &move);
    QTest::mouseRelease(Handle(), Qt::LeftButton, {}, QPoint(50, 40));
    EXPECT_EQ(window->pos() - before, QPoint(-20, -15));
    Run(1);
    EXPECT_TRUE(Becomes(Keys::MON_Left(800), PixelsToTwips(window->geometry().left())));
    EXPECT_TRUE(Becomes(Keys::MON_Top(800), PixelsToTwips(window->geometry().top())));
    QTest::mouseDClick(Handle(), Qt::LeftButton, {}, QPoint(50, 40));
    EXPECT_FALSE(window->WindowShown()) << "a double click puts it away";
}

TEST_F(MainWindow, ItsSizeIsKeptAndNeverTooSmall) {
    Start();
    Run(1);
    window->resize(250, 120);
    EXPECT_TRUE(Becomes(Keys::MON_Width, PixelsToTwips(250)));
    EXPECT_EQ(Picture()->geometry(), QRect(1, 1, 248, 118));
    window->resize(1, 1);
    EXPECT_EQ(window->width(), TwipsToPixels(SmallestWidthTwips));
    EXPECT_EQ(window->height(), TwipsToPixels(SmallestHeightTwips));
}

TEST_F(MainWindow, OnAScreenThatIsGoneItComesBackIntoSight) {
    settings.SetReg("MultiScreen", true);
    settings.SetReg("MON_Left_800", 60000);
    settings.SetReg("MON_Top_800", 3000);
    Start();
    EXPECT_TRUE(window->screen()->geometry().contains(window->geometry()));
}

} // namespace
