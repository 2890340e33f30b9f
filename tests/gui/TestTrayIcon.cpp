#include "forms/Colors.h"
#include "forms/ProgramIcon.h"
#include "gui/MainWindowFixture.h"

using namespace korvalin;

namespace {

constexpr std::int32_t background = 15323561; // the chart's, by default
constexpr std::int32_t blue = 0xFF0000;
constexpr std::int32_t green = 0x008000;
constexpr std::int32_t red = 0x0000FF;

TEST(TrayPicture, FillsWholeCellsOnTheTraysOwnPixels) {
    struct {
        int Size, VolumeEnd, UploadStart, UploadEnd, UploadTop, DownloadTop;
    } const rows[] = {
        {16, 5, 6, 11, 12, 8}, {22, 7, 8, 15, 17, 11}, {24, 8, 9, 17, 18, 12}, {32, 10, 12, 22, 24, 16}};
    for (const auto& row : rows) {
        const QImage picture =
            DrawTrayPicture({{16, blue}, {4, green}, {8, red}}, ToColor(background), row.Size);
        const int bottom = row.Size - 1;
        struct {
            int X, Y;
            std::int32_t Color;
        } const points[] = {{0, 0, blue},
                            {row.VolumeEnd - 1, bottom, blue},
                            {row.VolumeEnd, bottom, background},
                            {row.UploadStart - 1, bottom, background},
                            {row.UploadStart, bottom, green},
                            {row.UploadStart, row.UploadTop, green},
                            {row.UploadStart, row.UploadTop - 1, background},
                            {row.UploadEnd - 1, bottom, green},
                            {row.UploadEnd, bottom, red},
                            {row.UploadEnd, row.DownloadTop, red},
                            {row.UploadEnd, row.DownloadTop - 1, background}};
        ASSERT_EQ(picture.size(), QSize(row.Size, row.Size));
        for (const auto& point : points)
            EXPECT_EQ(ToColorValue(picture.pixelColor(point.X, point.Y)), point.Color)
                << "size " << row.Size << " at " << point.X << ", " << point.Y;
    }
}

class Tray : public MainWindow {
  protected:
    Tray() { area.State = TrayHost::Present; }

    std::int32_t ColorAt(int x, int y) { return ToColorValue(area.Picture(16).pixelColor(x, y)); }
    bool IsStatic() { return area.Picture(32) == ProgramIcon().pixmap(32).toImage(); }
    // The network is gone for a second, or back.
    void GoOffline() {
        offline.swap(network.Rows);
        Run(1);
    }
    std::vector<InterfaceRow> offline;
};

TEST_F(Tray, ShowsTheRatesAsBarsAndTheTextsAsTooltip) {
    Start();
    ASSERT_TRUE(area.Shown);
    use = {500'000'000, 0, false, 0};
    Run(30, 15'000); // of 30 kilobytes that fill the bar
    EXPECT_EQ(ColorAt(0, 8), blue) << "half of 1000 megabytes";
    EXPECT_EQ(ColorAt(0, 7), background);
    EXPECT_EQ(ColorAt(13, 8), red);
    EXPECT_EQ(ColorAt(13, 7), background);
    EXPECT_EQ(ColorAt(8, 15), background) << "nothing is sent";
    EXPECT_EQ(area.Tip, program->infoTexts.TrayTipText);
    EXPECT_NE(area.Tip.find("DL 15.0"), std::string::npos) << area.Tip;
    area.Sizes = {24};
    Run(1, 15'000);
    EXPECT_EQ(area.Icon.availableSizes(), QList<QSize>{QSize(24, 24)}) << "the panel was made larger";
}

TEST_F(Tray, IsLeftAloneWhileNothingChanges) {
    settings.SetReg("TrayTexts", 1); // the line's name
    Start();
    Run(3);
    const int icons = area.IconsSet;
    const int tips = area.TipsSet;
    Run(5);
    EXPECT_EQ(area.IconsSet, icons);
    EXPECT_EQ(area.TipsSet, tips);
    program->infoTexts.ChartBackgroundColor = 0;
    Run(1);
    EXPECT_EQ(area.IconsSet, icons + 1);
    EXPECT_EQ(ColorAt(0, 0), 0);
}

TEST_F(Tray, ShowsTheProgramsIconOnceWhileTheMachineIsOffline) {
    Start();
    Run(3, 1000);
    EXPECT_FALSE(IsStatic());
    GoOffline();
    EXPECT_TRUE(IsStatic());
    EXPECT_EQ(area.Tip, "Korvalin - Monitor");
    const int icons = area.IconsSet;
    Run(3);
    EXPECT_EQ(area.IconsSet, icons);
    GoOffline(); // and back
    Run(3, 1000);
    EXPECT_FALSE(IsStatic());
}

TEST_F(Tray, WithoutAnimationOnlyTheTooltipFollows) {
    program = nullptr;
    settings.SetReg("TrayAnimated", false);
    Start();
    Run(5, 2000);
    EXPECT_TRUE(IsStatic());
    EXPECT_EQ(area.IconsSet, 0);
    EXPECT_EQ(area.Tip, program->infoTexts.TrayTipText);
    program->infoTexts.TrayAnimated = true;
    Run(1, 2000);
    EXPECT_FALSE(IsStatic());
    program->infoTexts.TrayAnimated = false;
    Run(1, 2000);
    EXPECT_TRUE(IsStatic()) << "bars that stand still would lie";
}

TEST_F(Tray, AClickTogglesTheWindowAndTheIconHasItsMenu) {
    Start();
    EXPECT_EQ(area.Menu, Menu());
    area.Click();
    EXPECT_FALSE(window->isVisible());
    area.Click();
    EXPECT_TRUE(window->isVisible());
    window->showMinimized();
    area.Click();
    EXPECT_TRUE(window->isVisible() && !window->isMinimized()) << "out of sight it is shown";
}

TEST_F(Tray, OpeningTheMenuRebuildsTheDialEntriesWhenThePhoneBookChanged) {
    Start();
    QAction* dial = window->findChild<QMenu*>(QStringLiteral("mnuLogIn"))->menuAction();
    const auto isRebuilt = [&] {
        dial->setVisible(true); // rebuilt without dialling it goes
        Menu()->popup({});
        Menu()->close();
        return !dial->isVisible();
    };
    EXPECT_FALSE(isRebuilt());
    phoneBookEntries = 2;
    EXPECT_TRUE(isRebuilt());
    EXPECT_FALSE(isRebuilt());
}

TEST_F(Tray, AHostThatComesLaterGetsTheIconAndTheWindowThatWasPutAway) {
    area.State = TrayHost::Absent;
    settings.SetReg("AutoShow", false);
    Start();
    Run(2, 15'000);
    EXPECT_TRUE(window->isMinimized());
    area.Become(TrayHost::Present);
    EXPECT_TRUE(area.Shown);
    EXPECT_FALSE(IsStatic());
    EXPECT_EQ(area.Tip, program->infoTexts.TrayTipText);
    EXPECT_FALSE(window->isVisible());
    area.Become(TrayHost::Absent);
    EXPECT_TRUE(window->isVisible() && window->isMinimized()) << "nothing else brings it back";
    window->showNormal();
    area.Become(TrayHost::Present);
    EXPECT_TRUE(window->isVisible()) << "the user looks at it";
}

TEST_F(Tray, AnOfflineMachinesHostThatComesLaterGetsTheProgramsIcon) {
    area.State = TrayHost::Absent;
    Start();
    GoOffline();
    Run(2);
    area.Become(TrayHost::Present);
    EXPECT_TRUE(IsStatic());
    EXPECT_EQ(area.Tip, "Korvalin - Monitor");
}

TEST_F(Tray, WhileTheDesktopHasNotAnsweredAHiddenStartWaits) {
    area.State = TrayHost::Unknown;
    settings.SetReg("AutoShow", false);
    Start();
    EXPECT_FALSE(window->isVisible());
    area.Become(TrayHost::Absent);
    EXPECT_TRUE(window->isMinimized());
}

TEST_F(Tray, TheCloseBoxPutsTheWindowIntoTheTray) {
    Start();
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(area.Shown);
    EXPECT_TRUE(closings.empty());
}

TEST_F(Tray, WithoutATrayTheCloseBoxMinimizesAndSaysSoOnce) {
    area.State = TrayHost::Absent;
    Start();
    window->close();
    EXPECT_TRUE(window->isMinimized());
    EXPECT_NE(boxes.Take().Text.find("taskbar"), std::string::npos);
    for (int i = 0; i < 2; ++i) {
        window->showNormal();
        window->close();
        EXPECT_TRUE(window->isMinimized());
    }
    EXPECT_TRUE(settings.GetBool("NoTrayTold")) << "not at the next start either";
    Choose("mnuBeenden");
    EXPECT_EQ(closings, std::vector<int>{1});
}

TEST_F(Tray, EveryEndIsRecordedOnceWithItsReasonAfterTheIconIsGone) {
    struct {
        const char* What;
        int Reason;
        std::function<void()> End;
    } const rows[] = {
        {"close box", 0,
         [&] {
             program->infoTexts.CloseTrayOnly = false;
             window->close();
         }},
        {"menu", 1, [&] { Item("mnuBeenden")->trigger(); }},
        {"session", 2, [&] { window->Quit(CloseReason::SystemEnd); }},
        {"from outside", 3, [&] { window->Quit(CloseReason::TaskManager); }},
        {"from the tray", 1,
         [&] {
             area.Click();
             Item("mnuBeenden")->trigger();
         }},
    };
    Start();
    for (const auto& row : rows) {
        window = nullptr;
        closings.clear();
        OpenWindow();
        bool iconGone = false;
        window->Plug({[&](CloseReason reason) {
            closings.push_back(static_cast<int>(reason));
            iconGone = !area.Shown;
            window->Quit(); // a second request while the first is carried out
        }});
        row.End();
        window->Quit();
        window->DisplayLost();
        EXPECT_EQ(closings, std::vector<int>{row.Reason}) << row.What;
        EXPECT_TRUE(iconGone) << row.What;
        EXPECT_FALSE(window->isVisible()) << row.What;
    }
}

TEST_F(Tray, ALostDisplayIsRecordedAsTheSessionsEnd) {
    Start();
    window->DisplayLost();
    window->DisplayLost();
    EXPECT_EQ(closings, std::vector<int>{2});
}

} // namespace
