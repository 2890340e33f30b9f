#include "fakes/Ground.h"
#include "lang/ApplyFormTexts.h"

namespace korvalin {
namespace {

class ApplyFormTextsTest : public ::testing::Test, protected Ground {
  protected:
    ApplyFormTextsTest() {
        form_.setObjectName(QStringLiteral("frmTest"));
        std::string lines;
        for (int n = 1; n <= 20; ++n) {
            lines += "ENG\tfrmTestObj\t" + std::to_string(n) + "\t\"&Text " + std::to_string(n) +
                     "\"\t\"Tip " + std::to_string(n) + "\"\r\n";
        }
        WriteTexts(lines +
                   "ENG\tfrmTestObj\t21\t\"\"\t\"Only a tip\"\r\nENG\tfrmTestObj\t22\t\"Up && down\"\r\n");
        Settings.SetReg("Language", "ENG");
        EXPECT_TRUE(Language.InitProgramTexts());
    }

    template <typename T>
    T& Tagged(T* element, const char* number) {
        element->setProperty("Tag", QStringLiteral("left #LngNo:%1").arg(QLatin1String(number)));
        return *element;
    }

    QWidget form_;
};

TEST_F(ApplyFormTextsTest, PutsCaptionAndToolTipOnEveryKindOfElement) {
    Tagged(&form_, "1");
    auto& button = Tagged(new QPushButton(&form_), "2");
    auto& group = Tagged(new QGroupBox(&form_), "3");
    auto& inner = Tagged(new QCheckBox(&group), "4");
    auto& label = Tagged(new QLabel(&form_), "5");
    auto& buddyLabel = Tagged(new QLabel(&form_), "6");
    buddyLabel.setBuddy(&button);
    auto& edit = Tagged(new QLineEdit(QStringLiteral("typed"), &form_), "7");
    auto& menu = Tagged(new QMenu(&form_), "8");
    auto& action = Tagged(new QAction(&form_), "9");
    menu.addAction(&action);
    auto& submenu = Tagged(new QMenu(&menu), "10");
    menu.addMenu(&submenu);
    QTabWidget tabs(&form_);
    auto& page = Tagged(new QWidget, "11");
    tabs.addTab(&page, QStringLiteral("first"));
    auto& ampersand = Tagged(new QLabel(&form_), "22");
    ApplyFormTexts(form_, Language);

    const struct {
        QString Shown;
        const char* Expected;
    } rows[] = {
        {form_.windowTitle(), "Text 1"},
        {form_.toolTip(), "Tip 1"},
        {button.text(), "&Text 2"},
        {button.toolTip(), "Tip 2"},
        {group.title(), "&Text 3"},
        {inner.text(), "&Text 4"},
        {label.text(), "Text 5"},
        {buddyLabel.text(), "&Text 6"},
        {edit.text(), "typed"},
        {edit.toolTip(), "Tip 7"},
        {menu.title(), "&Text 8"},
        {action.text(), "&Text 9"},
        {action.toolTip(), "Tip 9"},
        {submenu.title(), "&Text 10"},
        {tabs.tabText(0), "&Text 11"},
        {tabs.tabToolTip(0), "Tip 11"},
        {page.toolTip(), ""},
        {ampersand.text(), "Up & down"},
        {submenu.menuAction()->toolTip(), "Tip 10"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.Shown, QString::fromUtf8(row.Expected));
    EXPECT_TRUE(menu.toolTipsVisible());
}

TEST_F(ApplyFormTextsTest, LeavesTheRestAlone) {
    const auto designed = [&](const char* number) {
        auto& button = Tagged(new QPushButton(QStringLiteral("designed"), &form_), number);
        button.setToolTip(QStringLiteral("old tip"));
        return &button;
    };
    QPushButton* const unmarked = designed("-");
    QPushButton* const zero = designed("0");
    QPushButton* const missing = designed("99");
    QPushButton* const tipOnly = designed("21");
    auto plain = std::make_unique<QPushButton>(QStringLiteral("designed"), &form_);
    // A dialog of this window has texts of its own.
    QDialog dialog(&form_);
    auto& inDialog = Tagged(new QPushButton(QStringLiteral("designed"), &dialog), "2");
    ApplyFormTexts(form_, Language);
    for (const QPushButton* button : {unmarked, zero, missing, tipOnly, plain.get(), &inDialog}) {
        EXPECT_EQ(button->text(), QStringLiteral("designed"));
    }
    EXPECT_EQ(missing->toolTip(), QStringLiteral("old tip"));
    EXPECT_EQ(tipOnly->toolTip(), QStringLiteral("Only a tip"));
}

TEST_F(ApplyFormTextsTest, ReachesEveryLoadedWindowAndTellsIt) {
    struct Listening : QWidget {
        QString TitleWhenTold;
        void changeEvent(QEvent* event) override {
            if (event->type() == QEvent::LanguageChange) TitleWhenTold = windowTitle();
        }
    } listening;
    listening.setObjectName(QStringLiteral("frmTest"));
    Tagged(&listening, "3");
    Tagged(&form_, "1");
    ApplyTextsToLoadedForms(Language);
    EXPECT_EQ(form_.windowTitle(), QStringLiteral("Text 1"));
    EXPECT_EQ(listening.TitleWhenTold, QStringLiteral("Text 3"));
}

} // namespace
} // namespace korvalin
