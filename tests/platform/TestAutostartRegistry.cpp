#include "fakes/FakeRegistry.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/AutostartRegistry.h"
#include "platform/linux/PosixFiles.h"

#include <optional>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

class TestAutostartRegistry : public testing::Test {
  protected:
    TestAutostartRegistry() {
        EXPECT_EQ(registry.OpenKeyEx(RegistryHive::CurrentUser,
                                     "SOFTWARE\\Microsoft\\windows\\CurrentVersion\\Run",
                                     RegistryAccess::Write, key),
                  ErrorSuccess);
    }
    std::optional<std::string> Query(std::size_t room = 4096) {
        std::string text;
        const int code = registry.QueryValueEx(key, "korvalin", room, text);
        return code == ErrorSuccess ? std::optional(text) : std::nullopt;
    }
    // A program folder with executable files of these names.
    std::string MakeProgramFolder(const std::string& name,
                                  std::initializer_list<const char*> programs) const {
        fs::create_directories(folder / name);
        for (const char* program : programs) {
            fs::permissions(folder.Write(name + "/" + program, "#!/bin/sh\n"), fs::perms(0700));
        }
        return (folder / name).string();
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

TEST_F(TestAutostartRegistry, TheEntryNamesAFileThatCanBeStarted) {
    struct {
        const char* Folder;
        std::initializer_list<const char*> Files;
        const char* Started;
    } const rows[] = {{"all", {"Korvalin", "korvalin", "Korvalin.exe"}, "Korvalin"},
                      {"launcher", {"korvalin", "Korvalin.exe"}, "korvalin"},
                      {"program", {"Korvalin.exe"}, "Korvalin.exe"}};
    for (const auto& row : rows) {
        const std::string programs = MakeProgramFolder(row.Folder, row.Files);
        ASSERT_EQ(registry.SetValueEx(key, "Korvalin", programs + "/Korvalin"), ErrorSuccess);
        EXPECT_TRUE(EntryHas("Exec=\"" + programs + "/" + row.Started + "\"")) << row.Folder;
        EXPECT_EQ(Query(), programs + "/Korvalin");
    }
    for (const char* line : {"Type=Application", "Name=Korvalin", "X-GNOME-Autostart-enabled=true"}) {
        EXPECT_TRUE(EntryHas(line)) << line;
    }
}

TEST_F(TestAutostartRegistry, AnyPathIsQuotedForTheExecLineAndReadBack) {
    struct {
        const char* Path;
        const char* Exec;
    } const rows[] = {{"/opt/my programs/Korvalin", R"("/opt/my programs/Korvalin.exe")"},
                      {R"(/a"b/Korvalin)", R"("/a\\"b/Korvalin.exe")"},
                      {R"(/a\b/Korvalin)", R"("/a\\\\b/Korvalin.exe")"},
                      {"/a$b`c/Korvalin", R"("/a\\$b\\`c/Korvalin.exe")"},
                      {"/100%/Korvalin", R"("/100%%/Korvalin.exe")"},
                      {"/tab\tand\nline/Korvalin", R"("/tab\tand\nline/Korvalin.exe")"},
                      {" /leading blank", R"(" /leading blank.exe")"}};
    for (const auto& row : rows) {
        ASSERT_EQ(registry.SetValueEx(key, "Korvalin", row.Path), ErrorSuccess);
        EXPECT_TRUE(EntryHas(std::string("Exec=") + row.Exec)) << folder.Read("autostart/korvalin.desktop");
        EXPECT_EQ(Query(), row.Path);
    }
}

TEST_F(TestAutostartRegistry, ReadsEntriesThatOthersWroteOrChanged) {
    fs::create_directories(folder / "autostart");
    struct {
        const char* Entry;
        std::optional<std::string> Path;
    } const rows[] = {
        {"[Desktop Entry]\nExec=\"/a b/\\\\\"k\\\\\" 5%%\" --hidden\n", R"(/a b/"k" 5%)"},
        {"# comment\r\n[Desktop Entry]\r\nExec = /opt/korvalin --hidden\r\n", "/opt/korvalin"},
        {"[Desktop Entry]\nExec=/k\nHidden=true\n", std::nullopt},
        {"[Desktop Entry]\nExec=/k\nX-GNOME-Autostart-enabled=false\nX-Korvalin-Path=/k", std::nullopt},
        {"[Desktop Action Stop]\nExec=/k\n", std::nullopt},
        {"no entry at all", std::nullopt},
        {"", std::nullopt}};
    for (const auto& row : rows) {
        folder.Write("autostart/korvalin.desktop", row.Entry);
        EXPECT_EQ(Query(), row.Path) << row.Entry;
    }
}

TEST_F(TestAutostartRegistry, TheRunKeyHoldsThisProgramAlone) {
    std::vector<std::string> names{"left over"};
    EXPECT_EQ(registry.DeleteValue(key, "Korvalin"), ErrorFileNotFound);
    EXPECT_EQ(registry.EnumValues(key, names), ErrorSuccess);
    EXPECT_TRUE(names.empty());
    EXPECT_EQ(registry.SetValueEx(key, "../Other", "/x"), ErrorAccessDenied);
    ASSERT_EQ(registry.SetValueEx(key, "KORVALIN", "/x"), ErrorSuccess);
    EXPECT_EQ(Query(2), std::nullopt); // no room for the terminator
    EXPECT_EQ(registry.EnumValues(key, names), ErrorSuccess);
    EXPECT_EQ(names, std::vector<std::string>{"Korvalin"});
    EXPECT_EQ(registry.DeleteValue(key, "Korvalin"), ErrorSuccess);
    EXPECT_FALSE(fs::exists(folder / "autostart/korvalin.desktop"));
    EXPECT_EQ(inner.Writes, 0);
}

TEST_F(TestAutostartRegistry, AFolderThatCannotBeMadeRefusesTheEntry) {
    folder.Write("autostart", "a file");
    EXPECT_EQ(registry.SetValueEx(key, "Korvalin", "/x"), ErrorAccessDenied);
    EXPECT_EQ(Query(), std::nullopt);
    EXPECT_EQ(registry.DeleteValue(key, "Korvalin"), ErrorFileNotFound);
}

} // namespace
} // namespace korvalin
