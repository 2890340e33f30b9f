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
    EXPECT_EQ(Shown("lblAuthor"), std::string("Developed by ") + maker::Author);
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
    } const rows[] = {{"lblLinkKorvalin", maker::ProgramPage},
                      {"lblInfoLink", maker::HelpPage},
                      {"lblSupportMail", mail},
                      {"picKorvalin", maker::ProgramPage}};
    for (const auto& row : rows) {
        for (const bool byMouse : {true, false}) {
            Open();
            auto* link = Find(row.Name);
            EXPECT_EQ(link->cursor().shape(), Qt::PointingHandCursor);
            if (byMouse) {
                Click(row.Name);
            } else if (link->focusPolicy() != Qt::NoFocus) { // of the picture: its link stands beside it
                for (int tabs = 0; tabs < 5 && about->focusWidget() != link; ++tabs)
                    QTest::keyClick(about->focusWidget(), Qt::Key_Tab);
                QTest::keyClick(about->focusWidget(), Qt::Key_Return);
            } else {
                continue;
            }
            EXPECT_EQ(std::exchange(shell.Addresses, {}), Lines{row.Address}) << row.Name;
            EXPECT_FALSE(about->isVisible()) << row.Name;
        }
    }
}

TEST_F(About, StaysAndSaysSoWhenNothingOpensALink) {
    shell.Starts = false;
    Open();
    EXPECT_EQ(Shown("lblStatus"), "");
    Click("lblInfoLink");
    EXPECT_TRUE(about->isVisible());
    EXPECT_EQ(Shown("lblStatus"), "No program on this system opens this address.");
}

TEST_F(About, ChecksForAnUpdateOnDemandOnly) {
    Open();
    EXPECT_FALSE(Find("cmdUpdate")->isVisible()) << "nobody checks";
    for (const int result : {8, 9}) {
        bool programEnded = false;
        about->Plug({[&] {
                         EXPECT_FALSE(Find("cmdUpdate")->isEnabled());
                         about->ShowStatus(QStringLiteral("Looking ..."));
                         EXPECT_TRUE(about->findChild<QLabel*>(QStringLiteral("lblStatus"))->isVisible());
                         return result;
                     },
                     [] {}, [&] { programEnded = true; }});
        Click("cmdUpdate");
        EXPECT_EQ(programEnded, result == 9);
        EXPECT_TRUE(Find("cmdUpdate")->isEnabled());
    }
}

TEST_F(About, ShowsHowFarACheckIsAndCancelsIt) {
    const QLocale numbers = QLocale::system();
    const QString half =
        numbers.toString(1500) + QLatin1String(" / ") + numbers.toString(3000) + QLatin1String(" KB");
    for (const auto& [choice, caption] :
         {std::pair("ENG - English", "&Cancel"), {"GER - Deutsch", "A&bbrechen"}}) {
        Open();
        program->language.ChooseLanguage(choice);
        ApplyTextsToLoadedForms(program->language);
        auto* bar = Find<QProgressBar>("prgUpdate");
        auto* bytes = Find<QLabel>("lblBytes");
        auto* cancel = Find<QPushButton>("cmdCancel");
        EXPECT_FALSE(bar->isVisible() || cancel->isVisible());
        int cancelled = 0;
        const auto check = [&] {
            about->ShowRunning(true);
            EXPECT_TRUE(bar->isVisible());
            EXPECT_EQ(bar->maximum(), 0) << "busy";
            about->ShowProgress(1'500'000, 3'000'000);
            EXPECT_EQ(bar->maximum(), 3000);
            EXPECT_EQ(bar->value(), 1500);
            EXPECT_EQ(bytes->text(), half);
            about->layout()->activate();
            EXPECT_GE(bytes->width(), bytes->sizeHint().width());
            EXPECT_GE(cancel->width(), cancel->sizeHint().width());
            EXPECT_GT(bar->width(), 40);
            about->ShowProgress(1, {});
            EXPECT_EQ(bar->maximum(), 0);
            EXPECT_EQ(bytes->text(), QStringLiteral("1 KB"));
            for (const std::uint64_t announced : {std::uint64_t{3'000'000}, UINT64_MAX - 5000}) {
                about->ShowProgress(5'000'000, announced);
                EXPECT_EQ(bar->maximum(), 0) << "compressed, or worse";
            }
            EXPECT_EQ(cancel->text().toStdString(), caption);
            Click("cmdCancel");
            EXPECT_EQ(cancelled, 1);
            QTest::keyClick(about.get(), Qt::Key_Escape);
            EXPECT_EQ(cancelled, 2) << "nobody would see the rest";
            about->ShowRunning(false);
            return 5;
        };
        about->Plug({check, [&] { ++cancelled; }});
        Find<QPushButton>("cmdUpdate")->click();
        EXPECT_FALSE(about->isVisible() || bar->isVisibleTo(about.get()) || cancel->isVisibleTo(about.get()));
    }
}

} // namespace
