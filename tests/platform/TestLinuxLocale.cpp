#include "platform/linux/system/LinuxLocale.h"

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
