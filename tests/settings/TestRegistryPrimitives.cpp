#include "fakes/FakeRegistry.h"
#include "settings/RegistryPrimitives.h"

using namespace korvalin;

namespace {

constexpr std::string_view path = "Software\\Other\\Run";

/// A registry that does not find a key, so many times.
class FlakyRegistry : public FakeRegistry {
  public:
    int Misses = 0;
    int OpenKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access,
                  RegistryKey& key) override {
        return --Misses >= 0 ? ErrorBadKey : FakeRegistry::OpenKeyEx(hive, keyPath, access, key);
    }
};

TEST(RegistryPrimitives, WriteCreatesTheKeyAsLongAsThatHelps) {
    struct {
        int Misses, OpenResult, CreateResult;
        bool Written;
    } const rows[] = {{0, ErrorSuccess, ErrorSuccess, true},
                      {3, ErrorSuccess, ErrorSuccess, true},
                      {0, ErrorFileNotFound, ErrorSuccess, false}, // created but never found
                      {1, ErrorSuccess, ErrorAccessDenied, false}};
    for (const auto& row : rows) {
        FlakyRegistry registry;
        RegistryPrimitives primitives(registry);
        EXPECT_EQ(primitives.RegEnsureKey(path), 1) << "created";
        EXPECT_EQ(primitives.RegEnsureKey(path), 2) << "found";
        registry.Misses = row.Misses;
        registry.OpenResult = row.OpenResult;
        registry.CreateResult = row.CreateResult;
        EXPECT_EQ(primitives.RegWriteString(path, "name", " text "), row.Written);
        EXPECT_EQ(primitives.RegReadString(path, "Name"), row.Written ? " text " : "");
        EXPECT_EQ(primitives.RegWriteString(path, "name", "  "), row.Written) << "a blank text deletes";
        EXPECT_EQ(registry.OpenKeys, 0) << "a key was left open";
    }
}

} // namespace
