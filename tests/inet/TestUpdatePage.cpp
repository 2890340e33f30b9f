#include "inet/UpdatePage.h"

#include <gtest/gtest.h>

using namespace korvalin;

namespace {

using Channel = UpdatePage::Channel;

std::string OfferOf(const std::string& text, Channel channel = Channel::OnDemand) {
    const auto offer = UpdatePage(text).Offer(channel);
    return offer ? offer->Version.Numbers() + " " + offer->FileName : "";
}

TEST(UpdatePage, OffersAVersionForEachWayOfChecking) {
    const std::string page =
        "<p>newest release: 2.4.1 of 1 May<br>UPGRADABLE ax2.4.0-auto.EXE vX2.4.1-setup241.exe<p>GER:1.2 "
        "vom 3. Mai<i>eng:1.3 of 4 May<";
    EXPECT_EQ(OfferOf(page), "2.4.1 setup241.exe");
    EXPECT_EQ(OfferOf(page, Channel::Automatic), "2.4.0 auto.EXE");
    const UpdatePage parsed(page);
    EXPECT_EQ(parsed.NewestRelease(), "2.4.1 of 1 May");
    EXPECT_EQ(parsed.LanguageInformation("GER"), "1.2 vom 3. Mai");
    EXPECT_EQ(parsed.LanguageInformation("FRA"), "1.3 of 4 May");
    EXPECT_EQ(parsed.LanguageInformation(""), "1.3 of 4 May");
}

TEST(UpdatePage, OffersNothingThatItDoesNotSayCompletely) {
    for (const char* rest : {"", "2.4.1", "2.4.1-setup", "2.4-setup.exe", "2.4.1.5-setup.exe",
                             "2.-4.1-setup.exe", "2..1-setup.exe", ".4.1-setup.exe", "2.4.1x-setup.exe",
                             " 2.4.1-setup.exe", "2.4.99999999999-setup.exe", "2.4.1<-setup.exe"})
        EXPECT_EQ(OfferOf(std::string("Upgradable Vx") + rest), "") << rest;
    EXPECT_EQ(OfferOf("Upgradable: VxWorks, vx.html, Vx2.4.1-setup.exe"), "2.4.1 setup.exe")
        << "before a digit only";
    EXPECT_EQ(OfferOf("Vx2.4.1-setup.exe Upgradable"), "") << "the mark comes before";
    EXPECT_EQ(OfferOf("Upgradable Ax2.4.1-setup.exe"), "") << "only for the automatic check";
}

TEST(UpdatePage, ShowsOneHarmlessLineOfTheRelease) {
    const std::pair<std::string, std::string> rows[] = {
        {"Newest Release", ""},
        {"Newest Release:", ""},
        {"Newest Release: 2", ""},
        {"Newest Release: 2<", "2"},
        {"Newest Release:<", ""},
        {"Newest Release: a\r\n\tb<", "a   b"},
        {"Newest Release: \xe4<", "ä"},
        {"Newest Release: 2.4\u202E1.4\u2069\u200F\u061C\u0085\uFEFF\x1b[1m<", "2.41.4 [1m"},
        {"Newest Release: " + std::string(5000, 'x') + "<", std::string(100, 'x')}};
    for (const auto& [text, release] : rows)
        EXPECT_EQ(UpdatePage(text).NewestRelease(), release) << text;
}

TEST(UpdatePage, ComparesNumbersNotText) {
    const ProgramVersion running{2, 3, 12};
    for (const ProgramVersion& newer : {ProgramVersion{2, 3, 13}, {2, 10, 0}, {3, 0, 0}})
        EXPECT_TRUE(IsNewer(newer, running)) << newer.Numbers();
    for (const ProgramVersion& older : {running, {2, 3, 9}, {2, 2, 99}, {1, 99, 99}})
        EXPECT_FALSE(IsNewer(older, running)) << older.Numbers();
    EXPECT_EQ((ProgramVersion{2, 1, 129}.Text()), "V2.1.12") << "the rest tells builds apart";
}

} // namespace
