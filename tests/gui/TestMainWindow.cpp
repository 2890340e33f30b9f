#include "forms/Twips.h"
#include "gui/MainWindowFixture.h"

using namespace korvalin;

TEST_F(MainWindow, ChartsTheTrafficButDrawsNothingInTheTaskbar) {
    Start();
    EXPECT_TRUE(window->isVisible());
    Run(30, 8000);
    EXPECT_EQ(program->infoTexts.RateDLText, "8.0");
    const QImage before = Picture()->Picture();
    window->showMinimized();
    Run(3, 80000);
    EXPECT_EQ(Picture()->Picture(), before);
    window->showNormal();
    EXPECT_NE(Picture()->Picture(), before) << "up to date when it comes back";
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

TEST_F(MainWindow, ItsSizeIsKeptAndADoubleClickPutsItAway) {
    Start();
    Run(1);
    window->resize(250, 120);
    EXPECT_TRUE(Becomes(Keys::MON_Width, PixelsToTwips(250)));
    EXPECT_EQ(Picture()->geometry(), QRect(1, 1, 248, 118));
    window->resize(1, 1);
    EXPECT_EQ(window->size(), QSize(TwipsToPixels(SmallestWidthTwips), TwipsToPixels(SmallestHeightTwips)));
    window->resize(250, 120);
    QTest::mouseClick(Handle(), Qt::LeftButton, {}, QPoint(50, 40));
    QTest::mouseDClick(Handle(), Qt::LeftButton, {}, QPoint(50, 40));
    EXPECT_FALSE(window->WindowShown()) << "a double click puts it away";
}

TEST_F(MainWindow, OnAScreenThatIsGoneItComesBackIntoSight) {
    settings.SetReg("MultiScreen", true);
    settings.SetReg("MON_Left_800", 60000);
    settings.SetReg("MON_Top_800", 3000);
    Start();
    EXPECT_TRUE(window->screen()->geometry().contains(window->geometry()));
}
