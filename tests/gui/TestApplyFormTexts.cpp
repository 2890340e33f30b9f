#include "fakes/CoreFixture.h"
#include "lang/ApplyFormTexts.h"

#include <fmt/format.h>

using namespace korvalin;

namespace {

class ApplyFormTextsTest : public CoreFixture {
  protected:
    ApplyFormTextsTest() {
        form.setObjectName(QStringLiteral("frmTest"));
        std::string texts =
            "ENG\tfrmTestObj\t21\t\"\"\t\"Only a tip\"\r\nENG\tfrmTestObj\t22\t\"Up && down\"\r\n";
        for (const auto& n : {"1", "2", "3", "4", "5", "6", "7", "8"})
            texts += fmt::format("ENG\tfrmTestObj\t{0}\t\"&Text {0}\"\t\"Tip {0}\"\r\n", n);
        WriteTexts(texts);
        settings.SetReg("Language", "ENG");
        EXPECT_TRUE(language.InitProgramTexts());
    }

    template <typename T>
    T& Tagged(T* element, const char* number) {
        element->setProperty("Tag", QStringLiteral("left #LngNo:%1").arg(QLatin1String(number)));
        return *element;
    }

    QWidget form;
};

TEST_F(ApplyFormTextsTest, PutsCaptionAndToolTipOnEveryKindOfElement) {
    Tagged(&form, "1");
    auto& group = Tagged(new QGroupBox(&form), "2");
    auto& inner = Tagged(new QCheckBox(&group), "3");
    auto& buddy = Tagged(new QLabel(&form), "5");
    buddy.setBuddy(&inner);
    auto& menu = Tagged(new QMenu(&form), "7");
    auto& action = Tagged(new QAction(&form), "8");
    menu.addAction(&action);
    QTabWidget tabs(&form);
    auto& page = Tagged(new QWidget, "3");
    tabs.addTab(&page, QStringLiteral("first"));
    auto& label = Tagged(new QLabel(&form), "22");
    ApplyFormTexts(form, language);
    const std::pair<QString, const char*> rows[] = {
        {form.windowTitle(), "Text 1"}, {form.toolTip(), "Tip 1"},    {group.title(), "&Text 2"},
        {inner.text(), "&Text 3"},      {inner.toolTip(), "Tip 3"},   {buddy.text(), "&Text 5"},
        {page.toolTip(), ""},           {menu.title(), "&Text 7"},    {action.text(), "&Text 8"},
        {action.toolTip(), "Tip 8"},    {tabs.tabText(0), "&Text 3"}, {tabs.tabToolTip(0), "Tip 3"},
        {label.text(), "Up & down"}};
    for (const auto& [shown, expected] : rows)
        EXPECT_EQ(shown, QLatin1String(expected));
    EXPECT_TRUE(menu.toolTipsVisible());
}

TEST_F(ApplyFormTextsTest, LeavesTheRestAlone) {
    QDialog dialog(&form); // it has texts of its own
    const std::pair<const char*, QWidget*> rows[] = {
        {"-", &form}, {"0", &form}, {"99", &form}, {"21", &form}, {"2", &dialog}};
    for (const auto& [number, parent] : rows) {
        auto& button = Tagged(new QPushButton(QStringLiteral("designed"), parent), number);
        button.setToolTip(QStringLiteral("old tip"));
        ApplyFormTexts(form, language);
        EXPECT_EQ(button.text(), QStringLiteral("designed")) << number;
        EXPECT_EQ(button.toolTip(), QLatin1String(number == std::string("21") ? "Only a tip" : "old tip"))
            << number;
    }
}

} // namespace
