#include "fakes/FakeRegistry.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/files/PosixFiles.h"
#include "platform/linux/store/AutostartRegistry.h"

#include <optional>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

class AutostartRegistryTest : public testing::Test {
  protected:
    AutostartRegistryTest() {
        EXPECT_EQ(registry.OpenKeyEx(RegistryHive::CurrentUser,
                                     "SOFTWARE\\Microsoft\\windows\\CurrentVersion\\Run",
                                     RegistryAccess::Write, key),
                  ErrorSuccess);
    }
    std::optional<std::string> Query() {
        std::string text;
        const int code = registry.QueryValueEx(key, "korvalin", 4096, text);
        return code == ErrorSuccess ? std::optional(text) : std::nullopt;
    }
    bool EntryHas(const std::string& line) const {
        return folder.Read("autostart/korvalin.desktop").find("\n" + line + "\n") != std::string::npos;
    }

    TemporaryFolder folder;
    FakeRegistry inner;
    PosixFiles files;
    AutostartRegistry registry{inner, files, folder / "autostart"};
    RegistryKey key = 0;
};

TEST_F(AutostartRegistryTest, TheEntryNamesAFileThatCanBeStarted) {
    // The best name comes last: each is preferred to those before.
    for (const char* name : {"Korvalin.exe", "korvalin", "Korvalin"}) {
        fs::permissions(folder.Write(name, "#!/bin/sh\n"), fs::perms(0700));
        ASSERT_EQ(registry.SetValueEx(key, "Korvalin", (folder / "Korvalin").string()), ErrorSuccess);
        EXPECT_TRUE(EntryHas("Exec=\"" + (folder / name).string() + "\"")) << name;
        EXPECT_EQ(Query(), (folder / "Korvalin").string());
    }
    EXPECT_TRUE(EntryHas("Type=Application"));
}

TEST_F(AutostartRegistryTest, AnyPathIsQuotedForTheExecLineAndReadBack) {
    struct {
        const char *Path, *Exec;
    } const rows[] = {{"/opt/my programs/Korvalin", R"("/opt/my programs/Korvalin.exe")"},
                      {R"(/a"b\c/Korvalin)", R"("/a\\"b\\\\c/Korvalin.exe")"},
                      {"/a$b`c%/Korvalin", R"("/a\\$b\\`c%%/Korvalin.exe")"},
                      {"/tab\tand\nline/Korvalin", R"("/tab\tand\nline/Korvalin.exe")"}};
    for (const auto& row : rows) {
        ASSERT_EQ(registry.SetValueEx(key, "Korvalin", row.Path), ErrorSuccess);
        EXPECT_TRUE(EntryHas(std::string("Exec=") + row.Exec)) << folder.Read("autostart/korvalin.desktop");
        EXPECT_EQ(Query(), row.Path);
    }
}

TEST_F(AutostartRegistryTest, ReadsEntriesThatOthersWroteOrChanged) {
    fs::create_directories(folder / "autostart");
    const std::pair<const char*, std::optional<std::string>> rows[] = {
        {"[Desktop Entry]\nExec=\"/a b/\\\\\"k\\\\\" 5%%\" --hidden\n", R"(/a b/"k" 5%)"},
        {"# comment\r\n[Desktop Entry]\r\nExec = /opt/korvalin --hidden\r\n", "/opt/korvalin"},
        {"[Desktop Entry]\nExec=/k\nHidden=true\n", std::nullopt},
        {"[Desktop Entry]\nExec=/k\nX-GNOME-Autostart-enabled=false\nX-Korvalin-Path=/k", std::nullopt},
        {"[Desktop Action Stop]\nExec=/k\n", std::nullopt},
    };
    for (const auto& [entry, path] : rows) {
        folder.Write("autostart/korvalin.desktop", entry);
        EXPECT_EQ(Query(), path) << entry;
    }
}

TEST_F(AutostartRegistryTest, TheRunKeyHoldsThisProgramAlone) {
    EXPECT_EQ(registry.SetValueEx(key, "../Other", "/x"), ErrorAccessDenied);
    ASSERT_EQ(registry.SetValueEx(key, "KORVALIN", "/x"), ErrorSuccess);
    std::vector<std::string> names{"left over"};
    EXPECT_EQ(registry.EnumValues(key, names), ErrorSuccess);
    EXPECT_EQ(names, std::vector<std::string>{"Korvalin"});
    EXPECT_EQ(registry.DeleteValue(key, "Korvalin"), ErrorSuccess);
    EXPECT_FALSE(fs::exists(folder / "autostart/korvalin.desktop"));
    EXPECT_EQ(inner.Writes, 0);
    fs::remove(folder / "autostart");
    folder.Write("autostart", "a file");
    EXPECT_EQ(registry.SetValueEx(key, "Korvalin", "/x"), ErrorAccessDenied);
}

} // namespace
