#include "fakes/CoreFixture.h"
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
