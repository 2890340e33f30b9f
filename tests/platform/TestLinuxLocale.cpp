#include "fakes/ChildProcess.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/LinuxLocale.h"

#include <cstdlib>

using namespace korvalin;

TEST(LinuxLocale, TranslatesPatternsThatLocaleCanExpress) {
    const std::pair<const char*, std::optional<std::string>> rows[] = {
        {"%d.%m.%Y", "dd.mm.yyyy"},         {"%m/%d/%y", "mm/dd/yy"},    {"%-d/%-m/%Y", "d/m/yyyy"},
        {"%e. %m. %Y", "d. mm. yyyy"},      {"%r", "hh:nn:ss AMPM"},     {"%I:%M:%S %p", "hh:nn:ss AMPM"},
        {"%H:%M:%S %Z", "hh:nn:ss"},        {"%OH:%OM:%OS", "hh:nn:ss"}, {"%F", "yyyy-mm-dd"},
        {"%Y年%m月%d日", "yyyy年mm月dd日"}, {"%d %b %Y", std::nullopt},  {"%d de %m", std::nullopt},
        {"%d.%m.%", std::nullopt},          {"", std::nullopt}};
    for (const auto& [format, pattern] : rows)
        EXPECT_EQ(PatternFromStrftime(format), pattern) << format;
}

// The C library reads LOCPATH and the locales below it once, so an own locale has its own process.
TEST(LinuxLocale, ReadsTheUsersFormatsAndKeepsTheDefaultsWithoutThem) {
    const TemporaryFolder folder;
    const auto compile = [&](const char* charset, const char* name) {
        return std::system(("localedef -i de_DE --no-archive -f " + std::string(charset) + " " +
                            (folder / name).string() + " 2>/dev/null")
                               .c_str()) == 0;
    };
    const bool german = compile("UTF-8", "de_DE.UTF-8") && compile("ISO-8859-1", "de_DE");
    for (const char* name : {"C", "xx_XX.UTF-8", "de_DE.UTF-8", "de_DE"}) {
        const bool expected = std::string_view(name).starts_with("de");
        if (expected && !german) GTEST_SKIP() << "localedef or the sources of locales are missing";
        ChildProcess reader([&] {
            setenv("LOCPATH", folder.Path().c_str(), 1);
            setenv("LC_NUMERIC", name, 1);
            setenv("LC_TIME", name, 1);
            setenv("LC_MONETARY", "xx_XX", 1); // one that is missing does not spoil the others
            const Locale locale = ReadSystemLocale();
            EXPECT_EQ(locale.DecimalMark, expected ? "," : Locale().DecimalMark) << name;
            EXPECT_EQ(locale.GroupingMark, expected ? "." : Locale().GroupingMark) << name;
            EXPECT_EQ(locale.ShortDate, expected ? "dd.mm.yyyy" : Locale().ShortDate) << name;
            EXPECT_EQ(locale.MonthNames[2], expected ? "März" : "March") << name;
            EXPECT_EQ(locale.DayNames[0], expected ? "Sonntag" : "Sunday") << name;
        });
        reader.Finish();
    }
}
