#include "fakes/TemporaryFolder.h"
#include "platform/linux/LinuxShell.h"
#include "platform/linux/XdgFolders.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <sys/wait.h>

namespace korvalin {
namespace {

/// A variable of the environment, set (or not) until the end of the scope.
class Variable {
  public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        value != nullptr ? setenv(name, value, 1) : unsetenv(name);
    }
    ~Variable() { old_ ? setenv(name_, old_->c_str(), 1) : unsetenv(name_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    const char* name_;
    std::optional<std::string> old_;
};

TEST(XdgFolders, OnlyAbsolutePathsOfTheEnvironmentCount) {
    struct {
        const char *Home, *Config, *Data, *ExpectedConfig, *ExpectedData;
    } const rows[] = {{"/home/a", "/c", "/d", "/c/korvalin", "/d"},
                      {"/home/a", nullptr, nullptr, "/home/a/.config/korvalin", "/home/a/.local/share"},
                      {"/home/a", "", "", "/home/a/.config/korvalin", "/home/a/.local/share"},
                      {"/home/a", "c", "./d", "/home/a/.config/korvalin", "/home/a/.local/share"}};
    for (const auto& row : rows) {
        const Variable home("HOME", row.Home);
        const Variable config("XDG_CONFIG_HOME", row.Config);
        const Variable data("XDG_DATA_HOME", row.Data);
        EXPECT_EQ(ConfigFolder(), row.ExpectedConfig);
        EXPECT_EQ(LinuxShell().SpecialFolder(SpecialFolderCommonAppData), row.ExpectedData);
    }
    const Variable noHome("HOME", nullptr);
    EXPECT_TRUE(XdgDataHome().is_absolute());
    EXPECT_EQ(LinuxShell().SpecialFolder(26), "");
}

TEST(LinuxShell, TakesTheLanguageFromTheFirstVariableThatIsSet) {
    struct {
        const char *All, *Messages, *Lang, *Expected;
    } const rows[] = {{"de_DE.UTF-8", "fr_FR", "it_IT", "de"},  {"", "fr_FR@euro", "it_IT", "fr"},
                      {nullptr, nullptr, "IT", "it"},           {"C", "fr_FR", "it_IT", "en"},
                      {nullptr, nullptr, "C.UTF-8", "en"},      {nullptr, nullptr, "POSIX", "en"},
                      {nullptr, nullptr, "ast_ES.UTF-8", "en"}, {nullptr, nullptr, nullptr, "en"}};
    for (const auto& row : rows) {
        const Variable all("LC_ALL", row.All);
        const Variable messages("LC_MESSAGES", row.Messages);
        const Variable lang("LANG", row.Lang);
        EXPECT_EQ(LinuxShell().UserLanguage(), row.Expected) << row.Expected;
    }
}

// A program that tells through a named pipe, which waits for it, what it was given.
class TestLinuxShell : public testing::Test {
  protected:
    TestLinuxShell() {
        EXPECT_EQ(mkfifo((folder / "report").c_str(), 0600), 0);
        program = folder.Write("a program", "#!/bin/sh\nexec > '" + (folder / "report").string() +
                                                "'\necho \"$#:$1\"\nps -o sid= -p $$ | tr -d ' '\necho $$\n"
                                                "ls /proc/$$/fd | grep -c '^2[0-9][0-9]$'\n");
        std::filesystem::permissions(program, std::filesystem::perms(0700));
    }
    std::vector<std::string> Report() const {
        std::ifstream stream(folder / "report");
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }

    TemporaryFolder folder;
    std::filesystem::path program;
};

TEST_F(TestLinuxShell, StartsAProgramThatStandsForItself) {
    const int inheritable = fcntl(0, F_DUPFD, 200); // without O_CLOEXEC, as libraries leave them
    ASSERT_TRUE(LinuxShell().StartProgram(program));
    close(inheritable);
    const auto lines = Report();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0], "0:");
    EXPECT_NE(lines[1], std::to_string(getsid(0))) << "a session of its own";
    EXPECT_EQ(lines[3], "0") << "no descriptor handed down";
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD) << "nothing to wait for";
}

TEST_F(TestLinuxShell, SaysWhenAProgramCannotBeStarted) {
    LinuxShell shell;
    EXPECT_FALSE(shell.StartProgram(folder / "none"));
    EXPECT_FALSE(shell.StartProgram(folder.Path()));
    std::filesystem::permissions(program, std::filesystem::perms(0600));
    EXPECT_FALSE(shell.StartProgram(program));
    EXPECT_FALSE(shell.StartProgram(""));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST_F(TestLinuxShell, OpensPagesOfTheWebOnly) {
    LinuxShell shell(program.string());
    for (const char* address :
         {"file:///etc/passwd", "javascript:alert(1)", "--help", "", "http://a b", "https://a\nb"}) {
        EXPECT_FALSE(shell.OpenPage(address)) << address;
    }
    ASSERT_TRUE(shell.OpenPage("HTTPS://example.org/?a=$(id)&b='\";c"));
    EXPECT_EQ(Report().at(0), "1:HTTPS://example.org/?a=$(id)&b='\";c");
    EXPECT_FALSE(LinuxShell("no-such-opener").OpenPage("http://example.org"));
}

TEST(LinuxShell, KnowsItsOwnProgram) {
    EXPECT_EQ(LinuxShell().ExecutablePath().filename(), "test_platform");
}

} // namespace
} // namespace korvalin
