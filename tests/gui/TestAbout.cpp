#include "dialogs/MakerInfo.h"
#include "dialogs/frmAbout.h"
#include "gui/Driver.h"
#include "gui/MainWindowFixture.h"
#include "lang/ApplyFormTexts.h"

using namespace korvalin;

namespace {

/// The about box, opened from the main window's menu.
class About : public MainWindow, protected Driver {
  protected:
    About() {
        openAbout = [this] {
            about = std::make_unique<frmAbout>(frmAbout::Parts{program->language, shell, "2.1.700"});
            about->Open();
        };
    }
    void Open() {
        if (!window) Start();
        Choose("mnuInfo");
        ASSERT_TRUE(QTest::qWaitForWindowActive(about.get()));
    }
    QWidget* Driven() const override { return about.get(); }

    std::unique_ptr<frmAbout> about;
};

TEST_F(About, TellsVersionAndAuthorInBothLanguages) {
    Open();
    EXPECT_EQ(about->windowTitle(), QStringLiteral("Korvalin - About"));
    EXPECT_EQ(Shown("lblVersion"), "Installed Version 2.1.700");
    ASSERT_TRUE(program->language.ChooseLanguage("GER - Deutsch"));
    ApplyTextsToLoadedForms(program->language);
    EXPECT_EQ(about->windowTitle(), QStringLiteral("Korvalin - Info"));
    EXPECT_EQ(Shown("lblVersion"), "Installierte Version 2.1.700");
    EXPECT_EQ(Shown("lblAuthor"), std::string("Entwickelt von ") + maker::Author);
    EXPECT_EQ(Shown("lblInfoCaption"), "&Hilfe:");
    EXPECT_TRUE(about->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    QTest::keyClick(about.get(), Qt::Key_Return);
    EXPECT_FALSE(about->isVisible());
}

TEST_F(About, LinksOpenWhatTheySayByMouseAndKeyboardAndCloseTheBox) {
    const std::string mail = std::string("mailto:") + maker::SupportMail + "?subject=Korvalin%20V2.1.700";
    struct {
        const char* Name;
        std::string Address;
        bool ByMouse;
    } const rows[] = {
        {"lblLinkKorvalin", maker::ProgramPage, true},
        {"picKorvalin", maker::ProgramPage, true},
        {"lblInfoLink", maker::HelpPage, false},
        {"lblSupportMail", mail, true},
    };
    for (const auto& row : rows) {
        Open();
        if (row.ByMouse) Click(row.Name);
        for (int tabs = 0; !row.ByMouse && tabs < 5 && about->focusWidget() != Find(row.Name); ++tabs)
            QTest::keyClick(about->focusWidget(), Qt::Key_Tab);
        if (!row.ByMouse) QTest::keyClick(about->focusWidget(), Qt::Key_Return);
        EXPECT_EQ(std::exchange(shell.Addresses, {}), Lines{row.Address}) << row.Name;
        EXPECT_FALSE(about->isVisible()) << row.Name;
    }
    shell.Starts = false;
    Open();
    Click("lblInfoLink");
    EXPECT_TRUE(about->isVisible());
    EXPECT_EQ(Shown("lblStatus"), "No program on this system opens this address.");
}

TEST_F(About, ShowsHowFarACheckIsAndCancelsIt) {
    const QLocale numbers = QLocale::system();
    const QString half = numbers.toString(1500) + QStringLiteral(" / ") + numbers.toString(3000);
    Open();
    EXPECT_FALSE(Find("cmdUpdate")->isVisible()) << "nobody checks";
    for (const int result : {8, 9}) {
        Open();
        auto* bar = Find<QProgressBar>("prgUpdate");
        int cancelled = 0;
        const auto check = [&] {
            EXPECT_FALSE(Find("cmdUpdate")->isEnabled());
            about->ShowStatus(QStringLiteral("Looking ..."));
            about->ShowRunning(true);
            EXPECT_TRUE(bar->isVisible() && Find("lblStatus")->isVisible());
            about->ShowProgress(1'500'000, 3'000'000);
            EXPECT_EQ(std::pair(bar->value(), bar->maximum()), std::pair(1500, 3000));
            EXPECT_EQ(Shown("lblBytes"), half.toStdString() + " KB");
            about->layout()->activate();
            for (const QWidget* shown : {Find("lblBytes"), Find("cmdCancel")})
                EXPECT_GE(shown->width(), shown->sizeHint().width());
            for (const std::uint64_t announced : {std::uint64_t{3'000'000}, UINT64_MAX - 5000}) {
                about->ShowProgress(5'000'000, announced);
                EXPECT_EQ(bar->maximum(), 0) << "compressed, or worse";
            }
            Click("cmdCancel");
            QTest::keyClick(about.get(), Qt::Key_Escape);
            EXPECT_EQ(cancelled, 2) << "by Esc too: nobody would see the rest";
            about->ShowRunning(false);
            return result;
        };
        bool programEnded = false;
        about->Plug({check, [&] { ++cancelled; }, [&] { programEnded = true; }});
        Click("cmdUpdate");
        EXPECT_EQ(programEnded, result == 9);
        EXPECT_FALSE(about->isVisible() || bar->isVisibleTo(about.get()));
    }
}

} // namespace
