#include "desktop/SettingsDialog.h"
#include "dialogs/MessageTexts.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmDial.h"
#include "dialogs/frmLogin.h"
#include "dialogs/frmMessage.h"
#include "gui/MainWindowFixture.h"
#include "gui/WhenPopupShows.h"
#include "lang/ApplyFormTexts.h"
#include "lang/frmLanguage.h"

using namespace korvalin;

namespace {

bool IsNamed(const QWidget& form, QWidget& control) {
    const auto* button = qobject_cast<QAbstractButton*>(&control);
    if (button != nullptr && button->text().contains(QRegularExpression(QStringLiteral("\\w")))) return true;
    const QList<QLabel*> labels = form.findChildren<QLabel*>();
    return !control.accessibleName().isEmpty() ||
           std::any_of(labels.begin(), labels.end(),
                       [&](QLabel* label) { return label->buddy() == &control; });
}

// What can be operated, and what is seen without a text: pictures and bars. A message's action is there with
// its caption only.
bool WantsAName(const QWidget& control) {
    const QString name = control.objectName();
    const bool isPart =
        name.isEmpty() || name == QLatin1String("cmdAction") || name.startsWith(QLatin1String("qt_"));
    return !isPart && qobject_cast<const QLabel*>(&control) == nullptr &&
           (control.focusPolicy() != Qt::NoFocus || qobject_cast<const PictureBox*>(&control) != nullptr ||
            qobject_cast<const QProgressBar*>(&control) != nullptr);
}

void ExpectNames(const QWidget& form) {
    for (QWidget* control : form.findChildren<QWidget*>()) {
        EXPECT_TRUE(!WantsAName(*control) || IsNamed(form, *control))
            << form.objectName().toStdString() << " " << control->metaObject()->className() << " "
            << control->objectName().toStdString();
    }
}

TEST_F(MainWindow, EveryControlOfEveryWindowHasANameForThoseWhoCannotSeeIt) {
    Start();
    Run(3, 50000);
    ExpectNames(*window);
    EXPECT_EQ(Picture()->accessibleName(), QStringLiteral("eth0"));
    EXPECT_EQ(Picture()->accessibleDescription().toStdString(), "Korvalin UL/DL 0.0 50.0 KB");
    ExpectNames(*std::unique_ptr<QWidget>(MakeSettingsDialog(*program, AllPorts(), *window)));
    ExpectNames(frmAbout({program->language, shell, "2.4.1"}));
    frmLanguage choice(program->language);
    ApplyTextsToLoadedForms(program->language);
    EXPECT_EQ(choice.windowTitle().toStdString(), "Choose language");
    ExpectNames(choice);
    MessageTexts texts;
    texts.Plug(program->language);
    ExpectNames(frmMessage(texts));
    ExpectNames(frmDial(texts, "Home", nullptr));
    {
        const WhenPopupShows box([](frmPopupMsg& shown) { ExpectNames(shown); });
        const QString caption = QStringLiteral("Yes");
        frmPopupMsg::ShowMsg(texts, {.Message = caption, .Captions = {caption, caption, caption}});
    }
    const WhenPopupShows<frmLogin> prompt([](frmLogin& shown) { ExpectNames(shown); });
    frmLogin::Ask(texts, "Home", "alice", nullptr);
}

} // namespace
