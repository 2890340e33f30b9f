#include "base/Date.h"
#include "platform/qt/QtLocale.h"

#include <QLocale>

namespace korvalin {
namespace {

TEST(QtLocale, TranslatesPatternsAndMarks) {
    struct {
        const char* Name;
        std::string ShortDate, Time, DecimalMark, GroupingMark, March, Sunday;
    } const rows[] = {
        {"de_DE", "dd.mm.yyyy", "hh:nn:ss", ",", ".", "März", "Sonntag"},
        {"en_US", "m/d/yyyy", "h:nn:ss AMPM", ".", ",", "March", "Sunday"},
        {"en_GB", "dd/mm/yyyy", "hh:nn:ss", ".", ",", "March", "Sunday"},
        {"ja_JP", "yyyy/mm/dd", "h:nn:ss", ".", ",", "3月", "日曜日"},
        {"tr_TR", "d.mm.yyyy", "hh:nn:ss", ",", ".", "Mart", "Pazar"},
        {"fr_FR", "dd/mm/yyyy", "hh:nn:ss", ",", "\u202F", "mars", "dimanche"},
        {"fi_FI", "d.m.yyyy", "h.nn.ss", ",", "\u00A0", "maaliskuu", "sunnuntai"},
        {"de_CH", "dd.mm.yyyy", "hh:nn:ss", ".", "’", "März", "Sonntag"},
        // Literals: "H 'h' mm", and "H:mm 'ч'." with "d.MM.yy 'г'.".
        {"fr_CA", "yyyy-mm-dd", "hh:nn:ss", ",", "\u00A0", "mars", "dimanche"},
        {"bg_BG", "d.mm.yyyy г.", "h:nn:ss ч.", ",", "\u00A0", "март", "неделя"},
    };
    for (const auto& row : rows) {
        const Locale locale = ReadQtLocale(QLocale(QLatin1String(row.Name)));
        EXPECT_EQ(locale.ShortDate, row.ShortDate) << row.Name;
        EXPECT_EQ(locale.Time, row.Time) << row.Name;
        EXPECT_EQ(locale.DecimalMark, row.DecimalMark) << row.Name;
        EXPECT_EQ(locale.GroupingMark, row.GroupingMark) << row.Name;
        EXPECT_EQ(locale.MonthNames[2], row.March) << row.Name;
        EXPECT_EQ(locale.DayNames[0], row.Sunday) << row.Name;
    }
}

// Whatever the toolkit knows of a country, a date and a time must survive.
TEST(QtLocale, GivesEveryCountryWholeDatesAndTimes) {
    const auto countOf = [](const std::string& text, const std::string& part) {
        int count = 0;
        for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
            ++count;
        return count;
    };
    const QList<QLocale> all =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    ASSERT_GT(all.size(), 300);
    for (const QLocale& qtLocale : all) {
        const Locale locale = ReadQtLocale(qtLocale);
        const std::string shown =
            FormatPattern(36980 + 17.0 / 24 + 8.0 / 1440 + 9.0 / 86400, // 2001-03-30 17:08:09
                          locale.ShortDate + "|" + locale.Time);
        EXPECT_EQ(countOf(shown, "2001"), 1) << qtLocale.name().toStdString() << " " << shown;
        EXPECT_EQ(countOf(shown, "30"), 1) << qtLocale.name().toStdString() << " " << shown;
        EXPECT_EQ(countOf(shown, "3"), 2) << qtLocale.name().toStdString() << " " << shown;
        EXPECT_EQ(countOf(shown, "17") + countOf(shown, "5"), 1)
            << qtLocale.name().toStdString() << " " << shown;
        EXPECT_EQ(countOf(shown, "8"), 1) << qtLocale.name().toStdString() << " " << shown;
        EXPECT_EQ(countOf(shown, "09"), 1) << qtLocale.name().toStdString() << " " << shown;
    }
}

} // namespace
} // namespace korvalin
