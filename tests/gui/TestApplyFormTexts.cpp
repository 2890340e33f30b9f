#include "ProgramFixture.h"
#include "lang/ApplyFormTexts.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

namespace korvalin {
namespace {

class FormTexts : public ProgramFixture {
  protected:
    FormTexts() {
        folder.Write("Korvalin.lng", "header\r\n"
                                     "ENG\tfrmTestObj\t1\tThe &window\r\n"
                                     "ENG\tfrmTestObj\t2\t&Press\tWhat it does\r\n"
                                     "ENG\tfrmTestObj\t3\t\tonly a tip\r\n"
                                     "ENG\tfrmTestObj\t4\t&Label\r\n");
        EXPECT_TRUE(program->language.InitProgramTexts());
        form.setObjectName(QStringLiteral("frmTest"));
    }
    template <typename T>
    T* Add(const char* tag) {
        auto* element = new T(&form);
        element->setProperty("Tag", QString::fromLatin1(tag));
        return element;
    }
    QWidget form;
};

TEST_F(FormTexts, EveryKindOfElementGetsItsCaptionAndTooltip) {
    form.setProperty("Tag", QStringLiteral("#LngNo:1"));
    auto* button = Add<QPushButton>("#LngNo:2");
    auto* action = Add<QAction>("#LngNo:2");
    auto* menu = Add<QMenu>("x #LngNo:2");
    auto* group = Add<QGroupBox>("#LngNo:4");
    auto* label = Add<QLabel>("#LngNo:4");
    auto* buddyLabel = Add<QLabel>("#LngNo:4");
    buddyLabel->setBuddy(Add<QLineEdit>(""));
    ApplyFormTexts(form, program->language);
    EXPECT_EQ(form.windowTitle(), QStringLiteral("The window"));
    EXPECT_EQ(button->text(), QStringLiteral("&Press"));
    EXPECT_EQ(button->toolTip(), QStringLiteral("What it does"));
    EXPECT_EQ(action->text(), QStringLiteral("&Press"));
    EXPECT_EQ(action->toolTip(), QStringLiteral("What it does"));
    EXPECT_EQ(menu->title(), QStringLiteral("&Press"));
    EXPECT_EQ(group->title(), QStringLiteral("&Label"));
    EXPECT_EQ(label->text(), QStringLiteral("Label")) << "an access key needs something to go to";
    EXPECT_EQ(buddyLabel->text(), QStringLiteral("&Label"));
}

TEST_F(FormTexts, AnEmptyTextLeavesTheElementAsDesigned) {
    auto* button = Add<QPushButton>("#LngNo:3");
    auto* unmarked = Add<QPushButton>("#LngNo:-");
    auto* unknown = Add<QPushButton>("#LngNo:77");
    for (QPushButton* designed : {button, unmarked, unknown}) designed->setText(QStringLiteral("designed"));
    ApplyFormTexts(form, program->language);
    EXPECT_EQ(button->text(), QStringLiteral("designed"));
    EXPECT_EQ(button->toolTip(), QStringLiteral("only a tip"));
    EXPECT_EQ(unmarked->text(), QStringLiteral("designed"));
    EXPECT_EQ(unknown->text(), QStringLiteral("designed"));
}

} // namespace
} // namespace korvalin
