#include "forms/Colors.h"
#include "forms/ProgramIcon.h"
#include "gui/MainWindowFixture.h"

using namespace korvalin;

constexpr std::int32_t background = 15323561; // the chart's, by default
constexpr std::int32_t blue = 0xFF0000;
constexpr std::int32_t green = 0x008000;
constexpr std::int32_t red = 0x0000FF;

TEST(TrayPicture, FillsWholeCellsOnTheTraysOwnPixels) {
    struct {
        int Size, VolumeEnd, UploadStart, UploadEnd, UploadTop, DownloadTop;
    } const rows[] = {{16, 5, 6, 11, 12, 8}, {22, 7, 8, 15, 17, 11}, {24, 8, 9, 17, 18, 12}};
    for (const auto& row : rows) {
        const QImage picture =
            DrawTrayPicture({{16, blue}, {4, green}, {8, red}}, ToColor(background), row.Size);
        QImage expected(row.Size, row.Size, picture.format());
        expected.fill(ToColor(background));
        const auto fill = [&](int left, int right, int top, std::int32_t color) {
            QPainter(&expected).fillRect(left, top, right - left, row.Size - top, ToColor(color));
        };
        fill(0, row.VolumeEnd, 0, blue);
        fill(row.UploadStart, row.UploadEnd, row.UploadTop, green);
        fill(row.UploadEnd, row.Size, row.DownloadTop, red);
        EXPECT_EQ(picture, expected) << row.Size;
    }
}

class Tray : public MainWindow {
  protected:
    Tray() { area.State = TrayHost::Present; }

    bool IsStatic() { return area.Picture(32) == ProgramIcon().pixmap(32).toImage(); }
    // The network is gone for a second, or back.
    void GoOffline() {
        offline.swap(network.Rows);
        Run(1);
    }
    std::vector<InterfaceRow> offline;
};

TEST_F(Tray, IsLeftAloneWhileNothingChangesAndStaticWhileTheMachineIsOffline) {
    settings.SetReg("TrayTexts", 1); // the line's name
    Start();
    for (const bool online : {true, false}) {
        if (!online) GoOffline();
        Run(3);
        EXPECT_EQ(IsStatic(), !online);
        EXPECT_EQ(area.Tip, online ? "eth0" : "Korvalin - Monitor");
        const std::pair before(area.IconsSet, area.TipsSet);
        Run(5);
        EXPECT_EQ(std::pair(area.IconsSet, area.TipsSet), before);
    }
    area.Become(TrayHost::Absent);
    area.Become(TrayHost::Present);
    EXPECT_TRUE(IsStatic()) << "for a host that comes later too";
    GoOffline(); // and back
    area.Sizes = {24};
    Run(30, 15'000); // of 30 kilobytes that fill the bar
    EXPECT_EQ(area.Icon.availableSizes(), QList<QSize>{QSize(24, 24)}) << "the panel was made larger";
    const QImage bars = area.Picture(24);
    EXPECT_EQ(bars.pixelColor(20, 12), ToColor(red));
    EXPECT_EQ(bars.pixelColor(20, 11), ToColor(background));
}

TEST_F(Tray, WithoutAnimationOnlyTheTooltipFollows) {
    settings.SetReg("TrayAnimated", false);
    Start();
    Run(5, 2000);
    EXPECT_TRUE(IsStatic() && area.IconsSet == 0);
    EXPECT_NE(area.Tip.find("DL 2.0"), std::string::npos) << area.Tip;
    for (const bool animated : {true, false}) { // bars that stand still would lie
        program->infoTexts.TrayAnimated = animated;
        Run(1, 2000);
        EXPECT_EQ(IsStatic(), !animated);
    }
}

TEST_F(Tray, AHostThatComesAndGoesTakesAndGivesTheWindowThatWasPutAway) {
    area.State = TrayHost::Unknown;
    settings.SetReg("AutoShow", false);
    Start();
    EXPECT_FALSE(window->isVisible()) << "waits for the desktop's answer";
    area.Become(TrayHost::Absent);
    EXPECT_TRUE(window->isVisible() && window->isMinimized()) << "nothing else brings it back";
    area.Become(TrayHost::Present);
    EXPECT_TRUE(area.Shown && !window->isVisible());
    area.Become(TrayHost::Absent);
    window->showNormal();
    area.Become(TrayHost::Present);
    EXPECT_TRUE(window->isVisible()) << "the user looks at it";
}

TEST_F(Tray, WithoutATrayTheCloseBoxMinimizesAndSaysSoOnce) {
    area.State = TrayHost::Absent;
    Start();
    for (const std::size_t told : {1U, 0U}) {
        window->showNormal();
        window->close();
        EXPECT_TRUE(window->isMinimized());
        EXPECT_EQ(TakeBoxes().size(), told);
    }
    EXPECT_TRUE(settings.Get(Keys::NoTrayTold)) << "not at the next start either";
}

TEST_F(Tray, EveryEndIsRecordedOnceWithItsReasonAfterTheIconIsGone) {
    const std::pair<int, std::function<void()>> rows[] = {
        {0, [&] { program->infoTexts.CloseTrayOnly = false, window->close(); }},
        {1, [&] { Choose("mnuBeenden"); }},
        {2, [&] { window->Quit(CloseReason::SystemEnd); }},
        {1, [&] { area.Click(), Choose("mnuBeenden"); }}}; // out of sight
    Start();
    for (const auto& [reason, end] : rows) {
        window = nullptr;
        closings.clear();
        OpenWindow();
        bool iconGone = false;
        window->Plug({[&](CloseReason why) {
            closings.push_back(static_cast<int>(why));
            iconGone = !area.Shown;
            window->Quit(); // a second request while the first is carried out
        }});
        end();
        window->Quit();
        window->DisplayLost();
        EXPECT_EQ(closings, std::vector<int>{reason});
        EXPECT_TRUE(iconGone) << reason;
        EXPECT_FALSE(window->isVisible()) << reason;
    }
}
