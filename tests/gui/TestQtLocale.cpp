#include "base/Date.h"
#include "platform/qt/QtLocale.h"

using namespace korvalin;

TEST(QtLocale, TranslatesPatternsAndMarks) {
    struct {
        const char* Name;
        std::string Dates, Marks, Names;
    } const rows[] = {{"de_DE", "dd.mm.yyyy|hh:nn:ss", ",.", "MärzSonntag"},
                      {"en_US", "m/d/yyyy|h:nn:ss AMPM", ".,", "MarchSunday"},
                      {"fr_CA", "yyyy-mm-dd|hh:nn:ss", ",\u00A0", "marsdimanche"}, // "H 'h' mm"
                      {"bg_BG", "d.mm.yyyy г.|h:nn:ss ч.", ",\u00A0", "мартнеделя"}};
    for (const auto& row : rows) {
        const Locale locale = ReadQtLocale(QLocale(QLatin1String(row.Name)));
        EXPECT_EQ(locale.ShortDate + "|" + locale.Time, row.Dates);
        EXPECT_EQ(locale.DecimalMark + locale.GroupingMark, row.Marks) << row.Name;
        EXPECT_EQ(locale.MonthNames[2] + locale.DayNames[0], row.Names);
        EXPECT_EQ(locale.ShortMonthNames[2].substr(0, 2), row.Names.substr(0, 2));
    }
}

// Whatever the toolkit knows of a country, a date and a time must survive.
TEST(QtLocale, GivesEveryCountryWholeDatesAndTimes) {
    const QList<QLocale> all =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    ASSERT_GT(all.size(), 300);
    for (const QLocale& qtLocale : all) {
        const Locale locale = ReadQtLocale(qtLocale);
        const QString shown = QString::fromStdString(FormatPattern(
            DateSerial(2001, 3, 30) + TimeSerial(17, 8, 9), locale.ShortDate + "|" + locale.Time));
        const auto count = [&](const char* part) { return shown.count(QLatin1String(part)); };
        EXPECT_TRUE(count("2001") == 1 && count("30") == 1 && count("3") == 2 &&
                    count("17") + count("5") == 1 && count("8") == 1 && count("09") == 1)
            << qtLocale.name().toStdString() << " " << shown.toStdString();
    }
}
