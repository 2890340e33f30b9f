#include "fakes/FakeRegistry.h"
#include "settings/RegistryPrimitives.h"

#include <deque>

using namespace korvalin;

namespace {

constexpr std::string_view path = "Software\\Other\\Run";

/// A registry whose next calls give the results laid out before.
class FlakyRegistry : public FakeRegistry {
  public:
    std::deque<int> OpenResults;
    int SetResult = ErrorSuccess;
    int Creates = 0;

    int OpenKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access,
                  RegistryKey& key) override {
        if (OpenResults.empty()) return FakeRegistry::OpenKeyEx(hive, keyPath, access, key);
        const int result = OpenResults.front();
        OpenResults.pop_front();
        return result;
    }
    int CreateKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access, RegistryKey& key,
                    RegistryDisposition& disposition) override {
        ++Creates;
        return FakeRegistry::CreateKeyEx(hive, keyPath, access, key, disposition);
    }
    int SetValueEx(RegistryKey key, std::string_view valueName, std::string_view text) override {
        return SetResult != ErrorSuccess ? SetResult : FakeRegistry::SetValueEx(key, valueName, text);
    }
};

class RegistryPrimitivesTest : public testing::Test {
  protected:
    ~RegistryPrimitivesTest() override { EXPECT_EQ(registry.OpenKeys, 0) << "a key was left open"; }
    FlakyRegistry registry;
    RegistryPrimitives primitives{registry};
};

} // namespace

TEST_F(RegistryPrimitivesTest, WriteCreatesTheKeyAsLongAsThatHelps) {
    struct {
        std::deque<int> OpenResults;
        int CreateResult;
        bool Written;
        int Creates;
    } const rows[] = {{{}, ErrorSuccess, true, 0},
                      {{ErrorFileNotFound}, ErrorSuccess, true, 1},
                      {{ErrorBadKey, ErrorFileNotFound, ErrorBadKey}, ErrorSuccess, true, 3},
                      {{ErrorAccessDenied}, ErrorSuccess, false, 0},
                      {{ErrorFileNotFound, ErrorAccessDenied}, ErrorSuccess, false, 1},
                      {{ErrorFileNotFound}, ErrorAccessDenied, false, 1}};
    EXPECT_EQ(primitives.RegEnsureKey(path), 1) << "created";
    EXPECT_EQ(primitives.RegEnsureKey(path), 2) << "found";
    for (const auto& row : rows) {
        primitives.RegWriteString(path, "name", "");
        registry.OpenResults = row.OpenResults;
        registry.CreateResult = row.CreateResult;
        registry.Creates = 0;
        EXPECT_EQ(primitives.RegWriteString(path, "name", " text "), row.Written);
        EXPECT_EQ(registry.Creates, row.Creates);
        EXPECT_EQ(primitives.RegReadString(path, "Name"), row.Written ? " text " : "");
    }
}

TEST_F(RegistryPrimitivesTest, FailuresReadAsNothing) {
    EXPECT_EQ(primitives.RegReadString(path, "name"), "");
    ASSERT_TRUE(primitives.RegWriteString(path, "fits", std::string(1023, 'x')));
    ASSERT_TRUE(primitives.RegWriteString(path, "long", std::string(1024, 'x')));
    EXPECT_EQ(primitives.RegReadString(path, "fits").size(), 1023U);
    EXPECT_EQ(primitives.RegReadString(path, "long"), "");
    EXPECT_EQ(primitives.RegReadString(path, "missing"), "");

    registry.SetResult = ErrorWriteFault;
    EXPECT_FALSE(primitives.RegWriteString(path, "fits", "new"));
    registry.OpenResult = ErrorFileNotFound;
    EXPECT_FALSE(primitives.RegWriteString(path, "fits", "new")) << "created but never found";
    registry.OpenResult = ErrorAccessDenied;
    EXPECT_EQ(primitives.RegReadString(path, "fits"), "");
    EXPECT_TRUE(primitives.RegValueNames(path).empty());
    EXPECT_FALSE(primitives.RegWriteString(path, "fits", ""));
}
