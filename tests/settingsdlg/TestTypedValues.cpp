#include "fakes/CoreFixture.h"
#include "settingsdlg/TypedValues.h"

using namespace korvalin;

namespace {

class TypedValues : public CoreFixture {};

TEST_F(TypedValues, NumbersAreReadAsTheUserWritesThem) {
    struct {
        const char *Decimal, *Grouping, *Typed, *Transparency;
    } const rows[] = {{",", ".", "12,5%", "12%"}, {",", ".", "13.6", "14%"},  {",", ".", "1,2,3", "0%"},
                      {".", ",", "nan", "0%"},    {".", ",", "1e999", "0%"},  {".", ",", "%", "0%"},
                      {".", ",", "101", "95%"},   {".", ",", "12.5 %", "12%"}};
    for (const auto& row : rows) {
        locale.DecimalMark = row.Decimal;
        locale.GroupingMark = row.Grouping;
        EXPECT_EQ(CheckedTransparency(row.Typed, locale), row.Transparency) << row.Typed;
    }
    EXPECT_EQ(CheckedNumber(settings, Keys::ChartMax, " 1,000", locale), 1000);
    EXPECT_EQ(CheckedNumber(settings, Keys::ChartMax, "12.5", locale), 12);
    EXPECT_EQ(WithoutGrouping("12.500", locale) + WithoutGrouping("12.500", locale, true), "12.50012500");
    locale.DecimalMark = ",";
    locale.GroupingMark = ".";
    EXPECT_EQ(CheckedNumber(settings, Keys::ChartMax, "12.5", locale), 12) << "no group of three";
    EXPECT_EQ(CheckedHistoryMinutes(settings, "7,9", locale, 4, 600), 7);
    EXPECT_EQ(CheckedHistoryMinutes(settings, "2,9", locale, 4, 600), 4);
    EXPECT_EQ(WithoutGrouping("12,500", locale), "12,500") << "no thousands, the mark is the decimal one";
    locale.GroupingMark = "\u202f";
    for (const char* thousand : {"1000", "1.000", "1 000", " 1\u202f000"})
        EXPECT_EQ(WithoutGrouping(thousand, locale), "1000") << thousand;
    for (const char* fraction : {"12.5", "12.50", "1.0000", "1000.000", "1.2.3"})
        EXPECT_EQ(WithoutGrouping(fraction, locale), fraction) << "no groups";
}

TEST_F(TypedValues, NothingTypedIsTheDefaultAndLeavesTheStore) {
    settings.SetReg("LANActive", 700);
    EXPECT_EQ(CheckedNumber(settings, Keys::LANActive, "", locale), 100);
    EXPECT_EQ(settings.Get(Keys::LANActive), 700);
}

TEST_F(TypedValues, AFolderIsMeantInFull) {
    EXPECT_EQ(TypedFolder(" /data/new  "), "/data/new");
    EXPECT_EQ(TypedFolder(" new"), (std::filesystem::current_path() / "new").string());
    EXPECT_EQ(TypedFolder("  "), "");
}

} // namespace
