#include "fakes/FakeFiles.h"
#include "fakes/FakeRegistry.h"
#include "fakes/FakeSystem.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/AutostartRegistry.h"
#include "platform/linux/SqliteRegistry.h"

namespace korvalin {
namespace {

struct Fake {
    FakeRegistry Tested;
};
struct Sqlite {
    TemporaryFolder Folder;
    FakeClock Clock;
    SqliteRegistry Tested{Folder / "registry.db", Clock};
};
struct BehindAutostart {
    TemporaryFolder Folder;
    FakeFiles Files;
    FakeRegistry Inner;
    AutostartRegistry Tested{Inner, Files, Folder / "autostart"};
};

/// What every registry must do, whatever stands behind it.
template <typename BackEnd>
class RegistryContract : public testing::Test {
  protected:
    RegistryKey Create(std::string_view path,
                       RegistryDisposition expected = RegistryDisposition::CreatedNewKey) {
        RegistryKey key = 0;
        auto disposition = RegistryDisposition::None;
        EXPECT_EQ(
            registry.CreateKeyEx(RegistryHive::CurrentUser, path, RegistryAccess::Write, key, disposition),
            0);
        EXPECT_EQ(disposition, expected) << path;
        return key;
    }
    int Open(std::string_view path, RegistryKey& key) {
        return registry.OpenKeyEx(RegistryHive::CurrentUser, path, RegistryAccess::Read, key);
    }
    std::string Read(RegistryKey key, std::string_view name) {
        std::string text = "(unread)";
        EXPECT_EQ(registry.QueryValueEx(key, name, 4096, text), ErrorSuccess) << name;
        return text;
    }

    BackEnd backEnd;
    Registry& registry = backEnd.Tested;
};

using BackEnds = testing::Types<Fake, Sqlite, BehindAutostart>;
TYPED_TEST_SUITE(RegistryContract, BackEnds);

TYPED_TEST(RegistryContract, KeysAreFoundWithoutRegardToCase) {
    RegistryKey key = 0;
    EXPECT_EQ(this->Open("Software\\Größe", key), ErrorFileNotFound);
    this->registry.CloseKey(this->Create("Software\\Größe"));
    this->registry.CloseKey(this->Create("SOFTWARE\\GRÖßE", RegistryDisposition::OpenedExistingKey));
    EXPECT_EQ(this->Open("software\\grÖßE", key), ErrorSuccess);
    EXPECT_EQ(this->Open("Software", key), ErrorFileNotFound);
}

TYPED_TEST(RegistryContract, ValuesComeBackAsTheyWereWritten) {
    const RegistryKey key = this->Create("Software\\Korvalin");
    const std::string_view rows[][2] = {{"Plain", "text"},
                                        {"", "the nameless value"},
                                        {"Empty", ""},
                                        {"Äpfel", "grün\r\n\t\"'%_;--"},
                                        {"a'b\"c;%_\\", "line\nbreak"},
                                        {"Bytes", "\x80\xff\xc3"},
                                        {std::string_view(), std::string_view()}};
    for (const auto& [name, text] : rows) {
        EXPECT_EQ(this->registry.SetValueEx(key, name, text), ErrorSuccess) << name;
        EXPECT_EQ(this->Read(key, name), text) << name;
    }
    EXPECT_EQ(this->registry.SetValueEx(key, "äPFEL", "red"), ErrorSuccess);
    EXPECT_EQ(this->Read(key, "Äpfel"), "red");
    const RegistryKey other = this->Create("Software\\Other");
    std::string text;
    EXPECT_EQ(this->registry.QueryValueEx(other, "Plain", 100, text), ErrorFileNotFound);
}

TYPED_TEST(RegistryContract, TheBufferHoldsTheTextAndItsTerminator) {
    const RegistryKey key = this->Create("Software\\Korvalin");
    const std::string huge(1'000'000, 'x');
    ASSERT_EQ(this->registry.SetValueEx(key, "Five", "12345"), ErrorSuccess);
    ASSERT_EQ(this->registry.SetValueEx(key, "Huge", huge), ErrorSuccess);
    struct {
        const char* Name;
        std::size_t Room;
        int Code;
    } const rows[] = {{"Five", 6, ErrorSuccess},         {"Five", 5, ErrorMoreData},
                      {"Five", 0, ErrorMoreData},        {"Huge", 1024, ErrorMoreData},
                      {"Huge", 1'000'001, ErrorSuccess}, {"None", 6, ErrorFileNotFound}};
    for (const auto& row : rows) {
        std::string text = "before";
        EXPECT_EQ(this->registry.QueryValueEx(key, row.Name, row.Room, text), row.Code)
            << row.Name << row.Room;
        EXPECT_EQ(text == "before", row.Code != ErrorSuccess) << row.Name << row.Room;
    }
}

TYPED_TEST(RegistryContract, NamesAreListedInOrderAsFirstWritten) {
    const RegistryKey key = this->Create("Software\\Korvalin");
    for (const char* name : {"beta", "Alpha", "BETA", "gamma"}) {
        ASSERT_EQ(this->registry.SetValueEx(key, name, "1"), ErrorSuccess);
    }
    EXPECT_EQ(this->registry.DeleteValue(key, "GAMMA"), ErrorSuccess);
    EXPECT_EQ(this->registry.DeleteValue(key, "gamma"), ErrorFileNotFound);
    std::vector<std::string> names{"left over"};
    EXPECT_EQ(this->registry.EnumValues(key, names), ErrorSuccess);
    EXPECT_EQ(names, (std::vector<std::string>{"Alpha", "beta"}));
}

TYPED_TEST(RegistryContract, AClosedKeyIsNoKey) {
    const RegistryKey key = this->Create("Software\\Korvalin");
    this->registry.CloseKey(key);
    this->registry.CloseKey(key);
    std::string text;
    std::vector<std::string> names;
    EXPECT_EQ(this->registry.QueryValueEx(key, "a", 100, text), ErrorInvalidHandle);
    EXPECT_EQ(this->registry.SetValueEx(key, "a", "b"), ErrorInvalidHandle);
    EXPECT_EQ(this->registry.DeleteValue(key, "a"), ErrorInvalidHandle);
    EXPECT_EQ(this->registry.EnumValues(key, names), ErrorInvalidHandle);
}

} // namespace
} // namespace korvalin
