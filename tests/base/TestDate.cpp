#include "base/Date.h"
#include "base/Locale.h"

using namespace korvalin;

namespace {

Locale German() {
    Locale locale;
    locale.DecimalMark = ",";
    locale.GroupingMark = ".";
    locale.ShortDate = "dd.mm.yyyy";
    return locale;
}

Locale American() {
    Locale locale;
    locale.ShortDate = "m/d/yyyy";
    locale.Time = "h:nn:ss AMPM";
    return locale;
}

TEST(Date, SerialSpillsOverMonthAndYearEnds) {
    struct {
        int Year, Month, Day;
        const char* Expected;
    } const rows[] = {{2024, 13, 1, "2025-01-01 00:00:00"},
                      {2024, 3, 0, "2024-02-29 00:00:00"},
                      {2023, 2, 29, "2023-03-01 00:00:00"},
                      {2024, 0, 15, "2023-12-15 00:00:00"}};
    for (const auto& row : rows)
        EXPECT_EQ(FormatDateIso(DateSerial(row.Year, row.Month, row.Day)), row.Expected);
    EXPECT_EQ(DateSerial(2010, 6, 13), 40342);
}

TEST(Date, RoundsToTheSecondAndCarriesIntoTheNextDay) {
    const Date almostMidnight = DateSerial(2024, 12, 31) + TimeSerial(23, 59, 59) + 0.6 * OneSecond;
    EXPECT_EQ(FormatDateIso(almostMidnight), "2025-01-01 00:00:00");
    EXPECT_EQ(FormatDateSuffix(DateSerial(2024, 3, 5) + TimeSerial(7, 8, 9)), "_20240305-070809");
    EXPECT_EQ(FormatTimeOfDay(1.0625), "01:30:00");
    EXPECT_EQ(FormatDuration(1.0625), "25:30:00");
    EXPECT_EQ(FormatDuration(-1), "00:00:00");
}

TEST(Date, ReadsWhatLocalesWriteAndNothingElse) {
    const Date day = DateSerial(2024, 3, 15);
    const Date dayTime = day + TimeSerial(14, 5, 9);
    struct {
        const char* Text;
        Locale UserLocale;
        Date Expected;
    } const rows[] = {
        {"2024-03-15 14:05:09", German(), dayTime},    {"2024-03-15T14:05:09", American(), dayTime},
        {"15.03.2024 14:05:09", German(), dayTime},    {"15.3.24", German(), day},
        {"3/15/2024 2:05:09 PM", American(), dayTime}, {"15.03.2024", American(), day},
        {"14:05", German(), TimeSerial(14, 5, 0)},     {"12:00:00 AM", American(), 0.0}};
    for (const auto& row : rows)
        EXPECT_NEAR(ParseDate(row.Text, row.UserLocale).value_or(-1), row.Expected, 0.1 * OneSecond)
            << row.Text;
    for (const char* wrong : {"31.02.2024", "2024-13-01", "2024-03-15 25:00", "13:00 PM", "2024-03/15", "15",
                              "", "today", "2024-03-15 14:05:09 junk", "999999999999-01-01"})
        EXPECT_EQ(ParseDate(wrong, German()), std::nullopt) << wrong;
}

} // namespace
