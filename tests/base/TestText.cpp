#include "base/Text.h"

using namespace korvalin;

TEST(Text, TellsUtf8FromTheRest) {
    for (const char* valid :
         {"", "plain", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(IsValidUtf8(valid)) << valid;
    }
    for (const char* broken : {"\xE4", "\xC3", "\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                               "\xF8\x88\x80\x80\x80", "a\x80", "\xE2\x82"}) {
        EXPECT_FALSE(IsValidUtf8(broken)) << broken;
    }
}

TEST(Text, ComparesWithoutCaseInEveryAlphabet) {
    for (const auto& [left, right] : {std::pair("ÄÖÜ-Leitung", "äöü-leitung"),
                                      {"ЖАБА", "жаба"},
                                      {"ŽABA", "žaba"},
                                      {"ΟΔΟΣ", "οδος"},
                                      {"ẞ", "ß"},
                                      {"Ⱥ", "ⱥ"},
                                      {"𐐀", "𐐨"}})
        EXPECT_TRUE(EqualsNoCase(left, right)) << left;
    for (const auto& [left, right] :
         {std::pair("×", "÷"), {"I", "ı"}, {"жаба", "жабa"}, {"\xD0", "\xF0"}, {"a", "aÄ"}})
        EXPECT_FALSE(EqualsNoCase(left, right)) << left;
    EXPECT_TRUE(ContainsNoCase("LineDL3SHOW", "show"));
    EXPECT_TRUE(StartsWithNoCase("mon_left_1280", "MON_Left"));
    EXPECT_TRUE(EndsWithNoCase("eth0_ALIAS", "_Alias"));
    EXPECT_FALSE(EndsWithNoCase("s", "_Alias"));
}

TEST(Text, AFullBufferWithoutZeroLosesItsLastByte) {
    EXPECT_EQ(AnsiBytesToString("abcd"), "abc");
    EXPECT_EQ(AnsiBytesToString(std::string_view("ab\0cd", 5)), "ab");
    EXPECT_EQ(AnsiBytesToString(""), "");
}

TEST(Text, ReachesATerminalWithoutControlCharacters) {
    const std::pair<std::string, const char*> rows[] = {{"Büro\n€", "Büro\n€"},
                                                        {"\x1b]0;x\x07", "\\x1b]0;x\\x07"},
                                                        {"a\xC2\x9B"
                                                         "b\x7F\r",
                                                         "a\\x9bb\\x7f\\x0d"},
                                                        {"\xE4\xC3", "\\xe4\\xc3"}};
    for (const auto& [text, shown] : rows)
        EXPECT_EQ(EscapeControls(text), shown);
}
