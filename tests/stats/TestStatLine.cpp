#include "StatsFixture.h"

using namespace korvalin;

namespace {

Locale WithForms(const char* shortDate, const char* time) {
    Locale locale;
    locale.ShortDate = shortDate;
    locale.Time = time;
    return locale;
}

// The line as it would be written again; "invalid" for one that is no record.
std::string Rewritten(std::string_view line, const Locale& locale = Locale()) {
    const auto fields = ParseStatLine(line, locale);
    if (!fields) return "invalid";
    std::string text;
    WriteStatRecord(text, *fields);
    EXPECT_TRUE(text.ends_with("\r\n"));
    return text.substr(0, text.size() - 2);
}

TEST(StatLine, IsReadByTheRulesAndWrittenInOneForm) {
    const std::pair<std::string, std::string> rows[] = {
        {R"("Line1",#2004-12-31 22:22:22#,#01:23:45#,1843212,20571190,"","user1")", ""},
        {R"("a,b",#2004-12-31#,#00:00:00#,0,0,"note","")", ""},
        {R"("a",#0100-01-01 00:00:01#,#1899-12-31 01:00:00#,18446744073709551616,1,"","")", ""},
        {R"("a",#9999-12-31 23:59:59#,#1899-12-31#,1,1,"it's "so"","")", ""},
        {R"("Line1",#2004-12-31 22:22:22#,#00:10:00#,100,200)",
         R"("Line1",#2004-12-31 22:22:22#,#00:10:00#,100,200,"","")"},
        {R"("  a b ",#2004-12-31 1:2#,#0:0:5#,-1500.7, 1e3 ,x,"",more,"and more")",
         R"("a b",#2004-12-31 01:02:00#,#00:00:05#,1500,1000,"","")"},
        {R"("a"b",!2004-12-31!,ü01:00ü,0.9,+7,"one, two","u")",
         R"("a",#2004-12-31#,#01:00:00#,0,7,"on","two")"},
        {R"("   ",#2004-12-31#,#01:00:00#,1,2,äbcö,"é")", R"(" ",#2004-12-31#,#01:00:00#,1,2,"bc","é")"},
        {R"("a",#1:1#)", "invalid"},
        {R"( "a",#2004-12-31#,#01:00:00#,1,2)", "invalid"},
        {R"("",#2004-12-31#,#01:00:00#,1,2)", "invalid"},
        {R"("a,#2004-12-31#,#01:00:00#,1,2)", "invalid"},
        {R"("a",#2004-12-31#,#01:00:00#,1)", "invalid"},
        {R"("a",##,#01:00:00#,1,2)", "invalid"},
        {R"("a",#2004-02-30#,#01:00:00#,1,2)", "invalid"},
        {R"("a",#2004-12-31#,#25:00:00#,1,2)", "invalid"},
        {R"("a",#2004-12-31#,#5#,1,2)", "invalid"},
        {R"("a",#2004-12-31#,#01:00:00#,,2)", "invalid"},
        {R"("a",#2004-12-31#,#01:00:00#,1x,2)", "invalid"},
        {R"("a",#2004-12-31#,#01:00:00#,1,nan)", "invalid"}};
    for (const auto& [read, written] : rows) {
        EXPECT_EQ(Rewritten(read), written.empty() ? read : written) << read;
        if (written != "invalid") {
            EXPECT_EQ(Rewritten(Rewritten(read)), Rewritten(read));
        }
    }
}

TEST(StatLine, TakesDatesInTheFormOfTheLocale) {
    const Locale german = WithForms("dd.mm.yyyy", "hh:nn:ss");
    const Locale american = WithForms("m/d/yyyy", "h:nn:ss AMPM");
    const std::pair<const char*, const Locale&> rows[] = {{"#31.12.2004 22:22:22#,#1:23:45#", german},
                                                          {"#12/31/2004 10:22:22 PM#,#1:23:45 AM#", american},
                                                          {"#2004-12-31 22:22:22#,#01:23:45#", american}};
    for (const auto& [dates, locale] : rows)
        EXPECT_EQ(Rewritten("\"a\"," + std::string(dates) + ",1,2", locale),
                  R"("a",#2004-12-31 22:22:22#,#01:23:45#,1,2,"","")")
            << dates;
}

TEST(StatLine, WritesNothingThatCouldNotBeReadBack) {
    struct {
        std::string_view Name, Info, User;
        const char* Expected;
    } const rows[] = {{"a\"b\r\nc", "x,y\"z\n", std::string_view("u\0,", 3), R"("a'b  c","x;y"z ","u ;")"},
                      {"", "", "", R"(" ","","")"}};
    for (const auto& row : rows) {
        std::string text;
        WriteStatRecord(text, {row.Name, 2, 0.5, 1, 2, row.Info, row.User});
        const std::string expected(row.Expected);
        const auto afterName = expected.find("\",\"") + 1;
        EXPECT_EQ(text, expected.substr(0, afterName) + ",#1900-01-01#,#12:00:00#,1,2" +
                            expected.substr(afterName) + "\r\n");
        EXPECT_NE(Rewritten(text.substr(0, text.size() - 2)), "invalid");
    }
    std::string text; // as merging the longest durations gives
    WriteStatRecord(text, {"a", DateSerial(10, 1, 1), DateSerial(10000, 1, 1), 1, 2, {}, {}});
    EXPECT_EQ(text, "\"a\",#0100-01-01#,#9999-12-31 23:59:59#,1,2,\"\",\"\"\r\n");
}

} // namespace
