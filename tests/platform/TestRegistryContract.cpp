#include "fakes/FakeFiles.h"
#include "fakes/FakeRegistry.h"
#include "fakes/FakeSystem.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/store/AutostartRegistry.h"
#include "platform/linux/store/SqliteRegistry.h"

using namespace korvalin;

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
    RegistryContract() { key = Create("Software\\Größe", RegistryDisposition::CreatedNewKey); }
    RegistryKey Create(std::string_view path, RegistryDisposition expected) {
        RegistryKey created = 0;
        auto disposition = RegistryDisposition::None;
        EXPECT_EQ(registry.CreateKeyEx(RegistryHive::CurrentUser, path, RegistryAccess::Write, created,
                                       disposition),
                  0);
        EXPECT_EQ(disposition, expected) << path;
        return created;
    }
    int Open(std::string_view path) {
        return registry.OpenKeyEx(RegistryHive::CurrentUser, path, RegistryAccess::Read, key);
    }
    std::string Read(std::string_view name) {
        std::string text = "(unread)";
        EXPECT_EQ(registry.QueryValueEx(key, name, 4096, text), ErrorSuccess) << name;
        return text;
    }

    BackEnd backEnd;
    Registry& registry = backEnd.Tested;
    RegistryKey key = 0;
};

using BackEnds = testing::Types<Fake, Sqlite, BehindAutostart>;
TYPED_TEST_SUITE(RegistryContract, BackEnds);

TYPED_TEST(RegistryContract, KeysAreFoundWithoutRegardToCase) {
    this->Create("SOFTWARE\\GRÖßE", RegistryDisposition::OpenedExistingKey);
    EXPECT_EQ(this->Open("software\\grÖßE"), ErrorSuccess);
    EXPECT_EQ(this->Open("Software"), ErrorFileNotFound);
}

TYPED_TEST(RegistryContract, ValuesComeBackAsTheyWereWritten) {
    const std::string_view rows[][2] = {{"", "the nameless value"},
                                        {"Empty", ""},
                                        {"Äpfel", "grün\r\n\t\"'%_;--"},
                                        {"a'b\"c;%_\\", "x"},
                                        {"Bytes", "\x80\xff\xc3"}};
    for (const auto& [name, text] : rows) {
        EXPECT_EQ(this->registry.SetValueEx(this->key, name, text), ErrorSuccess) << name;
        EXPECT_EQ(this->Read(name), text) << name;
    }
    EXPECT_EQ(this->registry.SetValueEx(this->key, "äPFEL", "red"), ErrorSuccess);
    EXPECT_EQ(this->Read("Äpfel"), "red");
    const RegistryKey other = this->Create("Software\\Other", RegistryDisposition::CreatedNewKey);
    std::string text;
    EXPECT_EQ(this->registry.QueryValueEx(other, "Äpfel", 100, text), ErrorFileNotFound);
}

TYPED_TEST(RegistryContract, TheBufferHoldsTheTextAndItsTerminator) {
    ASSERT_EQ(this->registry.SetValueEx(this->key, "Five", "12345"), ErrorSuccess);
    struct {
        const char* Name;
        std::size_t Room;
        int Code;
    } const rows[] = {{"Five", 6, ErrorSuccess},
                      {"Five", 5, ErrorMoreData},
                      {"Five", 0, ErrorMoreData},
                      {"None", 6, ErrorFileNotFound}};
    for (const auto& row : rows) {
        std::string text = "before";
        EXPECT_EQ(this->registry.QueryValueEx(this->key, row.Name, row.Room, text), row.Code)
            << row.Name << row.Room;
        EXPECT_EQ(text == "before", row.Code != ErrorSuccess) << row.Name << row.Room;
    }
}

TYPED_TEST(RegistryContract, NamesAreListedInOrderAsFirstWritten) {
    for (const char* name : {"beta", "Alpha", "BETA", "gamma"})
        ASSERT_EQ(this->registry.SetValueEx(this->key, name, "1"), ErrorSuccess);
    EXPECT_EQ(this->registry.DeleteValue(this->key, "GAMMA"), ErrorSuccess);
    EXPECT_EQ(this->registry.DeleteValue(this->key, "gamma"), ErrorFileNotFound);
    std::vector<std::string> names{"left over"};
    EXPECT_EQ(this->registry.EnumValues(this->key, names), ErrorSuccess);
    EXPECT_EQ(names, (std::vector<std::string>{"Alpha", "beta"}));
}

} // namespace
