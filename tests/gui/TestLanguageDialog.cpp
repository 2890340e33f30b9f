#include "fakes/CoreFixture.h"
#include "lang/frmLanguage.h"

using namespace korvalin;

namespace {

class LanguageDialogTest : public CoreFixture {
  protected:
    // Asks at the first start; the user acts once the window is there. Returns the program's language.
    std::string Ask(const char* usersLanguage, const std::function<void(QDialog&, QComboBox&)>& action) {
        std::filesystem::copy_file(KORVALIN_RESOURCES "/lang/Korvalin.lng", programFolder / "Korvalin.lng",
                                   std::filesystem::copy_options::overwrite_existing);
        shell.Language = usersLanguage;
        settings.SetReg("Language", "");
        language.PlugAskLanguage([&] {
            frmLanguage dialog(language);
            QTimer::singleShot(0, &dialog, [&] {
                ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
                action(dialog, *dialog.findChild<QComboBox*>(QStringLiteral("cboLanguage")));
                EXPECT_FALSE(dialog.isVisible());
                dialog.close(); // one that the action left open must not hang the test
            });
            dialog.exec();
        });
        EXPECT_TRUE(language.InitProgramTexts());
        return language.LanguageCode();
    }
};

TEST_F(LanguageDialogTest, StartsInTheUsersLanguage) {
    struct {
        const char *UsersLanguage, *Code, *Title, *Entry;
    } const rows[] = {{"de", "GER", "Sprache wählen", "GER - Deutsch"},
                      {"fr", "ENG", "Choose language", "ENG - English"}};
    for (const auto& row : rows) {
        const auto look = [&](QDialog& dialog, QComboBox& list) {
            EXPECT_EQ(dialog.windowTitle(), QString::fromUtf8(row.Title));
            EXPECT_EQ(list.currentText(), QString::fromUtf8(row.Entry));
            EXPECT_EQ(QApplication::focusWidget(), &list);
            QTest::keyClick(&list, Qt::Key_Escape);
        };
        EXPECT_EQ(Ask(row.UsersLanguage, look), row.Code);
        EXPECT_EQ(settings.Get(Keys::Language), "") << "closed without a choice: the next start asks again";
    }
}

TEST_F(LanguageDialogTest, ChangesAtOnceAndConfirmingStoresWhatIsShown) {
    const auto choose = [&](QDialog& dialog, QComboBox& list) {
        QTest::keyClick(&list, Qt::Key_Down);
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Choose language"));
        EXPECT_EQ(settings.Get(Keys::Language), "ENG");
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    };
    EXPECT_EQ(Ask("de", choose), "ENG");
    const auto confirm = [&](QDialog&, QComboBox& list) { QTest::keyClick(&list, Qt::Key_Return); };
    EXPECT_EQ(Ask("de", confirm), "GER");
    EXPECT_EQ(settings.Get(Keys::Language), "GER");
}

} // namespace
