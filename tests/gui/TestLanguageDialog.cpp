#include "ProgramFixture.h"
#include "lang/frmLanguage.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>

namespace korvalin {
namespace {

class LanguageDialog : public ProgramFixture {
  protected:
    LanguageDialog() { program->settings.SetReg("Language", ""); }

    template <typename T>
    T* Find(const frmLanguage& dialog, const char* name) {
        return dialog.findChild<T*>(QString::fromLatin1(name));
    }
    int textsChanged = 0;
};

TEST_F(LanguageDialog, ProposesTheUsersLanguageAndTakesTheConfirmedOne) {
    frmLanguage dialog(program->language, [this] { ++textsChanged; });
    dialog.show();
    EXPECT_EQ(Find<QLabel>(dialog, "lblWelcome")->text(), QStringLiteral("Welcome to Korvalin."));
    auto* list = Find<QComboBox>(dialog, "cboLanguage");
    EXPECT_EQ(list->count(), 2);
    EXPECT_TRUE(list->currentText().startsWith(QLatin1String("GER")));
    EXPECT_EQ(program->settings.GetText("Language"), "") << "nothing is chosen yet";
    QTest::mouseClick(Find<QPushButton>(dialog, "cmdOK"), Qt::LeftButton);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(program->settings.GetText("Language"), "GER");
    EXPECT_EQ(program->language.Lng("frmLanguageObj", 1), "Sprache wählen");
}

TEST_F(LanguageDialog, ANewChoiceIsShownAtOnceInEveryWindow) {
    frmLanguage dialog(program->language, [this] { ++textsChanged; });
    dialog.show();
    auto* list = Find<QComboBox>(dialog, "cboLanguage");
    list->setFocus();
    QTest::keyClick(list, Qt::Key_E); // its first letter
    EXPECT_EQ(program->settings.GetText("Language"), "ENG");
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Choose language"));
    QTest::keyClick(list, Qt::Key_Up);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Sprache wählen"));
    EXPECT_EQ(textsChanged, 2);
}

TEST_F(LanguageDialog, ClosedWithoutAChoiceTheProgramSpeaksGerman) {
    program->language.PlugAskLanguage([this] {
        frmLanguage dialog(program->language, [] {});
        dialog.show();
        QTest::keyClick(&dialog, Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_TRUE(program->language.InitProgramTexts());
    EXPECT_EQ(program->language.LanguageCode(), "GER");
}

} // namespace
} // namespace korvalin
