#include "base/Locale.h"
#include "base/Numbers.h"

using namespace korvalin;

TEST(Numbers, FormatsWithGroupingDecimalsAndSign) {
    Locale german;
    german.DecimalMark = ",";
    german.GroupingMark = ".";
    struct {
        double Value;
        const char* Pattern;
        const char* English;
        const char* German;
    } const rows[] = {{1500000, "#,##0", "1,500,000", "1.500.000"},
                      {1.048576, "0.0", "1.0", "1,0"},
                      {1234567.85, "#,##0.0", "1,234,567.9", "1.234.567,9"},
                      {0.05, "0.0", "0.1", "0,1"},
                      {-0.04, "0.0", "0.0", "0,0"},
                      {-1234.5, "#,##0.0", "-1,234.5", "-1.234,5"},
                      {0, "0", "0", "0"}};
    for (const auto& row : rows) {
        EXPECT_EQ(FormatNumber(row.Value, row.Pattern, Locale()), row.English);
        EXPECT_EQ(FormatNumber(row.Value, row.Pattern, german), row.German);
    }
}

TEST(Numbers, WholeNumbersRoundToEvenAndRefuseWhatIsNone) {
    const std::pair<const char*, std::optional<std::int32_t>> rows[] = {{" 7 ", 7},
                                                                        {"2.5", 2},
                                                                        {"3.5", 4},
                                                                        {"-2147483648", INT32_MIN},
                                                                        {"1e3", 1000},
                                                                        {"", std::nullopt},
                                                                        {"12x", std::nullopt},
                                                                        {"2147483648", std::nullopt},
                                                                        {"nan", std::nullopt},
                                                                        {"0x10", std::nullopt}};
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(ParseWholeNumber(text), expected) << text;
    EXPECT_EQ(UnsignedToDouble(-1), 4294967295.0);
}
