#include "settings/Password.h"

using namespace korvalin;

TEST(Password, ScramblesInPairsWithTheRandomDigitsAtTheThirdAndSixthPlace) {
    // 'a' = 97 + 13, 'b' = 98 + 9: 107 * 256 + 110 = 27502; a single 'c' = 99 + 13 = 112
    EXPECT_EQ(ScramblePassword("abc", 7, 4), "277504200112");
    EXPECT_EQ(ScramblePassword("c", 0, 9), "0001192");
    EXPECT_EQ(ScramblePassword("", 1, 2), "");
    EXPECT_EQ(ScramblePassword("a\xF7", 0, 0), std::nullopt) << "does not fit";
}

TEST(Password, SurvivesTheRoundTrip) {
    for (const std::string& password : {std::string("x"), std::string("日本語!"),
                                        std::string("\x01\x00\x02", 3), std::string("\xF2\xF6\xF2")}) {
        const auto scrambled = ScramblePassword(password, 5, 5);
        ASSERT_TRUE(scrambled) << password;
        EXPECT_EQ(UnscramblePassword(*scrambled), password);
    }
    for (int code = 119; code <= 246; ++code) { // as second byte these pass 32767
        const std::string password = {'a', static_cast<char>(code)};
        EXPECT_EQ(UnscramblePassword(ScramblePassword(password, 0, 0).value_or("")), password) << code;
    }
}

TEST(Password, ReadsNothingFromATextThatNoPasswordGives) {
    const std::pair<std::string_view, std::optional<std::string>> rows[] = {
        {"12345", ""},
        {"00x00x12", ""}, // four digits are left
        {"00x01xa", std::nullopt},
        {"00x01x2", std::nullopt}, // 12 - 13
        {"99x99x9", std::nullopt}, // above 65535
        {"02x07x8", std::nullopt}, // 8 * 256 + 30: 8 - 9
        {"00x04x3", std::string(1, 30)}};
    for (const auto& [scrambled, expected] : rows)
        EXPECT_EQ(UnscramblePassword(scrambled), expected) << scrambled;
}
