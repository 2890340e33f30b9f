#include "fakes/FakeFiles.h"
#include "fakes/FakeRegistry.h"
#include "fakes/FakeSystem.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/store/SqliteRegistry.h"

using namespace korvalin;

namespace {

constexpr const char* path = "Software\\Größe";

struct Fake {
    FakeRegistry Tested;
};
struct Sqlite {
    TemporaryFolder Folder;
    FakeClock Clock;
    FakeFiles Files;
    SqliteRegistry Tested{Folder / "registry.db", {Files, Folder / "autostart"}, Clock};
};

/// What every registry must do, whatever stands behind it.
template <typename BackEnd>
class RegistryContract : public testing::Test {
  protected:
    BackEnd backEnd;
    Registry& registry = backEnd.Tested;
};

using BackEnds = testing::Types<Fake, Sqlite>;
TYPED_TEST_SUITE(RegistryContract, BackEnds);

TYPED_TEST(RegistryContract, KeysAreMadeOnce) {
    EXPECT_EQ(this->registry.RegReadString(path, "name"), "");
    EXPECT_EQ(this->registry.RegEnsureKey(path), 1) << "created";
    EXPECT_EQ(this->registry.RegEnsureKey("software\\grÖßE"), 2) << "found";
    EXPECT_TRUE(this->registry.RegWriteString("Software", "name", "1"));
    EXPECT_EQ(this->registry.RegEnsureKey("Software"), 2) << "made by the write";
    EXPECT_TRUE(this->registry.RegValueNames(path).empty());
}

TYPED_TEST(RegistryContract, ValuesComeBackAsTheyWereWritten) {
    const std::string fits(RegistryBufferBytes - 1, 'x');
    const std::pair<std::string_view, std::string> rows[] = {{"", "the nameless value"},
                                                             {"Äpfel", " grün\r\n\t\"'%_;-- "},
                                                             {"äPFEL", "red"},
                                                             {"a'b\"c;%_\\", fits},
                                                             {"Bytes", "\x80\xff\xc3"}};
    for (const auto& [name, text] : rows) {
        EXPECT_TRUE(this->registry.RegWriteString(path, name, text)) << name;
        EXPECT_EQ(this->registry.RegReadString("SOFTWARE\\GRÖßE", name), text) << name;
    }
    EXPECT_EQ(this->registry.RegReadString(path, "Äpfel"), "red");
    EXPECT_TRUE(this->registry.RegFlush());
    EXPECT_TRUE(this->registry.RegWriteString(path, "Bytes", fits + "x"));
    EXPECT_EQ(this->registry.RegReadString(path, "Bytes"), "") << "no room for the terminating zero";
}

TYPED_TEST(RegistryContract, NamesAreListedInOrderAsFirstWrittenUnlessABlankTextDeletes) {
    for (const char* name : {"beta", "Alpha", "BETA", "gamma"})
        ASSERT_TRUE(this->registry.RegWriteString(path, name, "1"));
    EXPECT_TRUE(this->registry.RegWriteString(path, "GAMMA", "  "));
    EXPECT_FALSE(this->registry.RegWriteString(path, "gamma", ""));
    EXPECT_EQ(this->registry.RegValueNames(path), (std::vector<std::string>{"Alpha", "beta"}));
}

TEST(Registry, WriteCreatesTheKeyAsLongAsThatHelps) {
    FakeRegistry registry;
    for (const auto& [misses, written] : {std::pair(3, true), std::pair(1000, false)}) {
        registry.Misses = misses;
        EXPECT_EQ(registry.RegWriteString(path, "name", std::to_string(misses)), written);
        EXPECT_EQ(registry.RegReadString(path, "name"), "3");
    }
    registry.IsLost = true;
    EXPECT_FALSE(registry.RegWriteString(path, "name", "lost"));
}

} // namespace
