#include "fakes/FakeClock.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/files/PosixFiles.h"
#include "platform/linux/store/SqliteRegistry.h"

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

class AutostartFileTest : public testing::Test {
  protected:
    bool Register(const std::string& program) {
        return registry.RegWriteString("SOFTWARE\\Microsoft\\windows\\CurrentVersion\\Run", "KORVALIN",
                                       program);
    }
    std::string Registered() { return registry.RegReadString(RunKeyPath, "Korvalin"); }
    bool EntryHas(const std::string& line) const {
        return folder.Read("autostart/korvalin.desktop").find("\n" + line + "\n") != std::string::npos;
    }

    TemporaryFolder folder;
    FakeClock clock;
    PosixFiles files;
    SqliteRegistry registry{folder / "registry.db", {files, folder / "autostart"}, clock};
};

TEST_F(AutostartFileTest, NamesAFileThatCanBeStarted) {
    // The best name comes last: each is preferred to those before.
    for (const char* name : {"Korvalin.exe", "korvalin", "Korvalin"}) {
        fs::permissions(folder.Write(name, "#!/bin/sh\n"), fs::perms(0700));
        ASSERT_TRUE(Register((folder / "Korvalin").string()));
        EXPECT_TRUE(EntryHas("Exec=\"" + (folder / name).string() + "\"")) << name;
    }
    EXPECT_TRUE(EntryHas("Type=Application"));
    EXPECT_TRUE(EntryHas("TryExec=" + (folder / "Korvalin").string()));
}

TEST_F(AutostartFileTest, AnyPathIsQuotedForTheExecLineAndReadBack) {
    const std::pair<std::string, std::string> rows[] = {
        {"/opt/my programs/Korvalin", R"("/opt/my programs/Korvalin.exe")"},
        {R"(/a"b\c/Korvalin)", R"("/a\\"b\\\\c/Korvalin.exe")"},
        {"/a$b`c%/Korvalin", R"("/a\\$b\\`c%%/Korvalin.exe")"},
        {"/tab\tand\nline/Korvalin", R"("/tab\tand\nline/Korvalin.exe")"}};
    for (const auto& [path, exec] : rows) {
        ASSERT_TRUE(Register(path));
        EXPECT_TRUE(EntryHas("Exec=" + exec)) << folder.Read("autostart/korvalin.desktop");
        EXPECT_EQ(Registered(), path);
    }
}

TEST_F(AutostartFileTest, ReadsEntriesThatOthersWroteOrChanged) {
    fs::create_directories(folder / "autostart");
    const std::pair<const char*, const char*> rows[] = {
        {"[Desktop Entry]\nExec=\"/a b/\\\\\"k\\\\\" 5%%\" --hidden\n", R"(/a b/"k" 5%)"},
        {"# comment\r\n[Desktop Entry]\r\nExec = /opt/korvalin --hidden\r\n", "/opt/korvalin"},
        {"[Desktop Action Stop]\nExec=/k\n", ""},
        {"[Desktop Entry]\nExec=/k\nHidden=true\n", ""},
        {"[Desktop Entry]\nExec=/k\nX-GNOME-Autostart-enabled=false\nX-Korvalin-Path=/k", ""}};
    for (const auto& [entry, path] : rows) {
        folder.Write("autostart/korvalin.desktop", entry);
        EXPECT_EQ(Registered(), path) << entry;
    }
    EXPECT_FALSE(Register("/k")) << "what the user has switched off stays off";
}

TEST_F(AutostartFileTest, TheRunKeyHoldsThisProgramAlone) {
    EXPECT_FALSE(registry.RegWriteString(RunKeyPath, "../Other", "/x"));
    EXPECT_EQ(registry.RegReadString(RunKeyPath, "../Other"), "");
    ASSERT_TRUE(Register("/x"));
    EXPECT_EQ(registry.RegValueNames(RunKeyPath), std::vector<std::string>{"Korvalin"});
    EXPECT_TRUE(Register(""));
    EXPECT_FALSE(fs::exists(folder / "autostart/korvalin.desktop"));
    EXPECT_FALSE(Register(""));
    fs::remove(folder / "autostart");
    folder.Write("autostart", "a file");
    EXPECT_FALSE(Register("/x"));
}

} // namespace
