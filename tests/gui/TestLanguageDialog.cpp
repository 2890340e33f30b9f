#include "fakes/Ground.h"
#include "lang/ApplyFormTexts.h"
#include "lang/frmLanguage.h"

namespace korvalin {
namespace {

class LanguageDialogTest : public ::testing::Test, protected Ground {
  protected:
    LanguageDialogTest() {
        std::filesystem::copy_file(KORVALIN_RESOURCES "/lang/Korvalin.lng", Program / "Korvalin.lng");
        Language.PlugAskLanguage([this] {
            frmLanguage dialog(Language, [this] { ApplyTextsToLoadedForms(Language); });
            // The user acts once the window is there.
            QTimer::singleShot(0, &dialog, [&] {
                ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
                list_ = dialog.findChild<QComboBox*>(QStringLiteral("cboLanguage"));
                OnDialog(dialog);
                dialog.close(); // a dialog that the action left open must not hang the test
            });
            result_ = dialog.exec();
        });
    }

    // Asks at start; returns the language that the program then has.
    std::string Ask(std::function<void(QDialog&)> action) {
        OnDialog = std::move(action);
        EXPECT_TRUE(Language.InitProgramTexts());
        return Language.LanguageCode();
    }

    std::function<void(QDialog&)> OnDialog;
    QComboBox* list_ = nullptr;
    int result_ = -1;
};

TEST_F(LanguageDialogTest, StartsInTheUsersLanguage) {
    const struct {
        const char* UserLanguage;
        const char* Code;
        QString Title, Entry;
    } rows[] = {{"de", "GER", QStringLiteral("Sprache wählen"), QStringLiteral("GER - Deutsch")},
                {"fr", "ENG", QStringLiteral("Choose language"), QStringLiteral("ENG - English")}};
    for (const auto& row : rows) {
        Shell.Language = row.UserLanguage;
        Settings.SetReg("Language", "");
        EXPECT_EQ(Ask([&](QDialog& dialog) {
                      EXPECT_EQ(dialog.windowTitle(), row.Title);
                      EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("lblWelcome"))->text(),
                                QStringLiteral("Welcome to Korvalin."));
                      EXPECT_EQ(list_->count(), 2);
                      EXPECT_EQ(list_->currentText(), row.Entry);
                      EXPECT_EQ(QApplication::focusWidget(), list_);
                      EXPECT_FALSE(dialog.windowIcon().isNull());
                      QTest::keyClick(list_, Qt::Key_Escape);
                      EXPECT_FALSE(dialog.isVisible());
                  }),
                  row.Code);
        EXPECT_EQ(Settings.GetText("Language"), row.Code);
        EXPECT_EQ(result_, QDialog::Rejected);
    }
}

TEST_F(LanguageDialogTest, ChangesByKeyboardAtOnce) {
    Shell.Language = "de";
    EXPECT_EQ(Ask([&](QDialog& dialog) {
                  QTest::keyClick(list_, Qt::Key_Down);
                  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Choose language"));
                  EXPECT_EQ(Settings.GetText("Language"), "ENG");
                  QTest::keyClick(list_, Qt::Key_Return);
                  EXPECT_FALSE(dialog.isVisible());
              }),
              "ENG");
    EXPECT_EQ(result_, QDialog::Accepted);
}

TEST_F(LanguageDialogTest, ChangesByMouse) {
    Shell.Language = "en";
    EXPECT_EQ(Ask([&](QDialog& dialog) {
                  list_->showPopup();
                  QAbstractItemView* view = list_->view();
                  ASSERT_TRUE(QTest::qWaitForWindowExposed(view->window()));
                  const QRect row = view->visualRect(list_->model()->index(0, 0));
                  QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, row.center());
                  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Sprache wählen"));
                  QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
                  EXPECT_FALSE(dialog.isVisible());
              }),
              "GER");
    EXPECT_EQ(result_, QDialog::Accepted);
}

TEST_F(LanguageDialogTest, IsNotAskedAgain) {
    Settings.SetReg("Language", "ENG");
    EXPECT_EQ(Ask([](QDialog&) { ADD_FAILURE() << "asked again"; }), "ENG");
}

} // namespace
} // namespace korvalin
