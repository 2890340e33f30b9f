#include "fakes/ChildProcess.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/LinuxLocale.h"

#include <cstdlib>

namespace korvalin {
namespace {

TEST(LinuxLocale, TranslatesPatternsThatLocaleCanExpress) {
    struct {
        const char* Format;
        std::optional<std::string> Pattern;
    } const rows[] = {{"%d.%m.%Y", "dd.mm.yyyy"},
                      {"%m/%d/%y", "mm/dd/yy"},
                      {"%-d/%-m/%Y", "d/m/yyyy"},
                      {"%e. %m. %Y", "d. mm. yyyy"},
                      {"%r", "hh:nn:ss AMPM"},
                      {"%I:%M:%S %p", "hh:nn:ss AMPM"},
                      {"%H:%M:%S %Z", "hh:nn:ss"},
                      {"%OH:%OM:%OS", "hh:nn:ss"},
                      {"%T", "hh:nn:ss"},
                      {"%F", "yyyy-mm-dd"},
                      {"%Y年%m月%d日", "yyyy年mm月dd日"},
                      {"%d %b %Y", std::nullopt},
                      {"%d de %m", std::nullopt},
                      {"%d.%m.%", std::nullopt},
                      {"", std::nullopt}};
    for (const auto& row : rows)
        EXPECT_EQ(PatternFromStrftime(row.Format), row.Pattern) << row.Format;
}

TEST(LinuxLocale, TheCLocaleAndAMissingOneKeepTheDefaults) {
    for (const char* name : {"C", "C.UTF-8", "POSIX", "xx_XX.UTF-8"}) {
        setenv("LC_ALL", name, 1);
        const Locale locale = ReadSystemLocale();
        EXPECT_EQ(locale.ShortDate, Locale().ShortDate) << name;
        EXPECT_EQ(locale.GroupingMark, Locale().GroupingMark) << name;
        EXPECT_EQ(locale.MonthNames[4], "May") << name;
    }
    unsetenv("LC_ALL");
}

// The C library reads LOCPATH and the locales below it once, so each test of an own locale has its own
// process.
TEST(LinuxLocale, ReadsTheUsersFormats) {
    const TemporaryFolder folder;
    const std::string compile = "localedef -i de_DE --no-archive ";
    if (std::system((compile + "-f UTF-8 " + (folder / "de_DE.UTF-8").string() + " 2>/dev/null").c_str()) !=
            0 ||
        std::system((compile + "-f ISO-8859-1 " + (folder / "de_DE").string() + " 2>/dev/null").c_str()) !=
            0) {
        GTEST_SKIP() << "localedef or the sources of locales are missing";
    }
    for (const char* name : {"de_DE.UTF-8", "de_DE"}) {
        ChildProcess reader([&] {
            setenv("LOCPATH", folder.Path().c_str(), 1);
            setenv("LC_NUMERIC", name, 1);
            setenv("LC_TIME", name, 1);
            setenv("LC_MONETARY", "xx_XX", 1); // one that is missing does not spoil the others
            const Locale locale = ReadSystemLocale();
            EXPECT_EQ(locale.DecimalMark, ",");
            EXPECT_EQ(locale.GroupingMark, ".");
            EXPECT_EQ(locale.ShortDate, "dd.mm.yyyy");
            EXPECT_EQ(locale.Time, "hh:nn:ss");
            EXPECT_EQ(locale.MonthNames[2], "März");
            EXPECT_EQ(locale.DayNames[0], "Sonntag");
        });
        reader.Finish();
    }
}

} // namespace
} // namespace korvalin
