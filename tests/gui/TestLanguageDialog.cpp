#include "desktop/frmFirstStart.h"
#include "fakes/CoreFixture.h"
#include "gui/Driver.h"
#include "gui/WhenPopupShows.h"
#include "lang/frmLanguage.h"

using namespace korvalin;

using LanguageDialogTest = CoreFixture;

TEST_F(LanguageDialogTest, StartsInTheUsersLanguageAndChangesAtOnce) {
    struct {
        Qt::Key Key;
        const char *Title, *Stored;
    } const rows[] = {{Qt::Key_Escape, "Sprache wählen", ""}, // asks again at the next start
                      {Qt::Key_Down, "Choose language", "ENG"}};
    folder.Write("program/Korvalin.lng", WholeTexts());
    shell.Language = "de";
    for (const auto& row : rows) {
        language.PlugAskLanguage([&] {
            frmLanguage dialog(language);
            const WhenPopupShows<QDialog> popup([&](QDialog& box) {
                EXPECT_EQ(box.windowTitle(), QStringLiteral("Sprache wählen"));
                QTest::keyClick(QApplication::focusWidget(), row.Key);
                EXPECT_EQ(box.windowTitle(), QString::fromUtf8(row.Title));
                if (box.isVisible()) QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            });
            dialog.exec();
        });
        EXPECT_TRUE(language.InitProgramTexts());
        EXPECT_EQ(settings.Get(Keys::Language), row.Stored);
    }
}

namespace {

class FirstStartTest : public CoreFixture, protected Driver {
  protected:
    QWidget* Driven() const override { return window.get(); }
    void Open(const std::string& line) {
        program->lines.LineCount = program->infoTexts.LineIndex = line.empty() ? 0 : 1;
        program->lines.LineTable(1).EntryName = line;
        window = std::make_unique<frmFirstStart>(frmFirstStart::Parts{
            program->settings, program->language, program->aliases, program->lines, program->infoTexts});
        window->Open();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    std::unique_ptr<frmFirstStart> window;
};

TEST_F(FirstStartTest, ExplainsTheIconAndStoresTheTariffOfTheWatchedLine) {
    ASSERT_TRUE(StartProgram());
    for (const std::string line : {"", "<b>wire0"}) {
        Open(line);
        EXPECT_EQ(Shown("lblLine").find("the line <b>wire0") != std::string::npos, !line.empty());
        EXPECT_EQ(Find("txtFreeVolume")->isEnabled(), !line.empty());
        EXPECT_EQ(Shown("txtFreeVolume"), "");
        QTest::keyClick(window.get(), Qt::Key_Return);
        EXPECT_FALSE(window->isVisible());
        EXPECT_EQ(settings.Get(Keys::FreeVolume(line)), 0);
    }
    Open("<b>wire0");
    const std::tuple<const char*, int, Qt::GlobalColor> bars[] = {
        {"Volume", 2, Qt::blue}, {"Upload", 8, Qt::darkGreen}, {"Download", 13, Qt::red}};
    for (const auto& [name, cell, color] : bars) {
        const auto* picture = Find<QLabel>(std::string("img") + name);
        const QImage image = picture->pixmap(Qt::ReturnByValue).toImage();
        EXPECT_EQ(image.pixelColor(cell * image.width() / TrayScale, 1), QColor(color)) << name;
        EXPECT_EQ(picture->accessibleName().toStdString(), Shown(std::string("lbl") + name));
    }
    const std::pair<Qt::Key, const char*> typed[] = {{Qt::Key_F, "5000"}, {Qt::Key_D, "15"}};
    for (const auto& [key, number] : typed) {
        QTest::keyClick(window.get(), key, Qt::AltModifier);
        QTest::keyClicks(window->focusWidget(), QLatin1String(number));
    }
    const QSignalSpy changed(window.get(), &frmFirstStart::TariffChanged);
    QTest::keyClick(window->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(changed.size(), 1);
    const AliasInfo& tariff = program->aliases.Alias(program->aliases.AliasIndex("<b>wire0"));
    EXPECT_TRUE(tariff.FreeVolume == 5000 && tariff.MonthStartDay == 15);
}

} // namespace
