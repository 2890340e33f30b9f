#pragma once

#include "display/frmMain.h"
#include "fakes/CoreFixture.h"
#include "fakes/FakeNotificationArea.h"
#include "forms/PictureBox.h"

namespace korvalin {

/// The main window over fake ports; there is no notification area until a test says so.
class MainWindow : public CoreFixture {
  protected:
    MainWindow() {
        screen.Size = screen.Mode = ScreenSize{800, 800};
        network.Add("eth0", 1000, 500);
        settings.SetReg("Opacity", 255);
    }

    void Start() {
        ASSERT_TRUE(StartProgram());
        OpenWindow();
    }
    void OpenWindow() {
        window = std::make_unique<frmMain>(
            frmMain::Parts{settings, program->language, screen, program->samplingLoop, program->lines,
                           program->rateHistory, program->infoTexts, program->liveTexts, program->monthSums,
                           program->errors, clock, program->locale, area, boxes, program->dialing});
        window->Plug({.Closing = [this](CloseReason reason) { closings.push_back(static_cast<int>(reason)); },
                      .OpenStatistics = openStatistics,
                      .OpenSettings = openSettings,
                      .OpenAbout = openAbout});
        window->Form_Load();
    }
    // Seconds pass, each with an update.
    void Run(int seconds, std::uint64_t bytesPerSecond = 0) {
        for (int i = 0; i < seconds; ++i) {
            clock.Advance(1.001);
            for (InterfaceRow& row : network.Rows)
                row.InOctets += bytesPerSecond;
            program->samplingLoop.TimerMain_Timer();
        }
    }
    // Places are stored once the window manager, were there one, is done with the window.
    template <class Key>
    bool Becomes(const Key& key, int expected) {
        return QTest::qWaitFor([&] { return settings.Get(key) == expected; });
    }
    QAction* Item(const char* name) { return window->findChild<QAction*>(QString::fromLatin1(name)); }
    // What the user can do: a hidden or disabled entry cannot be chosen.
    void Choose(const char* name) {
        QAction* action = Item(name);
        ASSERT_TRUE(action->isVisible() && action->isEnabled()) << name;
        action->trigger();
    }
    PictureBox* Picture() { return window->findChild<PictureBox*>(QStringLiteral("PicChart")); }
    QLabel* Handle() { return window->findChild<QLabel*>(QStringLiteral("lblMove")); }
    int Setting(SettingKey<int> key) { return settings.Get(key); }

    FakeNotificationArea area;
    std::function<void()> openStatistics, openSettings, openAbout;
    std::vector<int> closings; // the reasons, as numbers
    std::unique_ptr<frmMain> window;
};

} // namespace korvalin
