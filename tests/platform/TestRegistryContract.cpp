#include "fakes/FakeFiles.h"
#include "fakes/FakeRegistry.h"
#include "fakes/FakeSystem.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/store/SqliteRegistry.h"

using namespace korvalin;

namespace {

constexpr const char* path = "Software\\Größe";

// What every registry must do, whatever stands behind it.
class RegistryContract : public testing::Test {
  protected:
    TemporaryFolder folder;
    FakeClock clock;
    FakeFiles files;
    FakeRegistry fake;
    SqliteRegistry sqlite{folder / "registry.db", {files, folder / "autostart"}, clock};
    Registry* const both[2] = {&fake, &sqlite};
};

TEST_F(RegistryContract, KeysAreMadeOnceAndAsLongAsThatHelps) {
    for (Registry* registry : both) {
        EXPECT_EQ(registry->RegReadString(path, "name"), "");
        EXPECT_EQ(registry->RegEnsureKey(path), 1) << "created";
        EXPECT_EQ(registry->RegEnsureKey("software\\grÖßE"), 2) << "found";
        EXPECT_TRUE(registry->RegWriteString("Software", "name", "1"));
        EXPECT_EQ(registry->RegEnsureKey("Software"), 2) << "made by the write";
        EXPECT_TRUE(registry->RegValueNames(path).empty());
    }
    for (const auto& [misses, written] : {std::pair(3, true), std::pair(1000, false)}) {
        fake.Misses = misses;
        EXPECT_EQ(fake.RegWriteString(path, "name", std::to_string(misses)), written);
        EXPECT_EQ(fake.RegReadString(path, "name"), "3");
    }
}

TEST_F(RegistryContract, ValuesComeBackAsTheyWereWrittenUntilABlankTextDeletesThem) {
    const std::string fits(RegistryBufferBytes - 1, 'x');
    const std::pair<std::string_view, std::string> rows[] = {
        {"", "the nameless value"}, {"beta", " grün\r\n\t\"'%_;-- "}, {"Äpfel", "green"}, {"äPFEL", "red"},
        {"a'b\"c;%_\\", fits},      {"Bytes", "\x80\xff\xc3"}};
    for (Registry* registry : both) {
        for (const auto& [name, text] : rows) {
            EXPECT_TRUE(registry->RegWriteString(path, name, text)) << name;
            EXPECT_EQ(registry->RegReadString("SOFTWARE\\GRÖßE", name), text) << name;
        }
        EXPECT_TRUE(registry->RegFlush());
        EXPECT_TRUE(registry->RegWriteString(path, "Bytes", fits + "x"));
        EXPECT_EQ(registry->RegReadString(path, "Bytes"), "") << "no room for the terminating zero";
        EXPECT_TRUE(registry->RegWriteString(path, "BYTES", "  "));
        EXPECT_FALSE(registry->RegWriteString(path, "bytes", ""));
        EXPECT_EQ(registry->RegValueNames(path),
                  (std::vector<std::string>{"", "a'b\"c;%_\\", "beta", "Äpfel"}));
    }
}

} // namespace
