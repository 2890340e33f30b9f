#include "fakes/ChildProcess.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/system/LinuxShell.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>

using namespace korvalin;

namespace {

TEST(LinuxShell, TakesTheLanguageFromTheFirstVariableThatIsSet) {
    const std::array<const char*, 4> rows[] = {{"de_DE.UTF-8", "fr_FR", "it_IT", "de"},
                                               {"", "fr_FR@euro", "it_IT", "fr"},
                                               {"C", "fr_FR", "it_IT", "en"},
                                               {"", "", "ast_ES.UTF-8", "en"}};
    for (const auto& [all, messages, lang, expected] : rows) {
        ChildProcess([&] {
            setenv("LC_ALL", all, 1);
            setenv("LC_MESSAGES", messages, 1);
            setenv("LANG", lang, 1);
            EXPECT_EQ(LinuxShell().UserLanguage(), expected);
        }).Finish();
    }
}

// A program that tells through a named pipe, which waits for it, what it was given.
class LinuxShellTest : public testing::Test {
  protected:
    LinuxShellTest() {
        EXPECT_EQ(mkfifo((folder / "report").c_str(), 0600), 0);
        program = folder.Write("a program", "#!/bin/sh\nexec > '" + (folder / "report").string() +
                                                "'\necho \"$#:$1\"\nps -o sid= -p $$ | tr -d ' '\n"
                                                "ls /proc/$$/fd | grep -c '^2[0-9][0-9]$'\n");
        std::filesystem::permissions(program, std::filesystem::perms(0700));
    }
    ~LinuxShellTest() override { EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child is left"; }
    std::array<std::string, 3> Report() const {
        std::ifstream stream(folder / "report");
        std::array<std::string, 3> lines;
        for (std::string& line : lines)
            std::getline(stream, line);
        return lines;
    }

    TemporaryFolder folder;
    std::filesystem::path program;
};

TEST_F(LinuxShellTest, StartsAProgramThatStandsForItselfOrSaysThatItCannot) {
    LinuxShell shell;
    const int inheritable = fcntl(0, F_DUPFD, 200); // without O_CLOEXEC, as libraries leave them
    ASSERT_TRUE(shell.StartProgram(program));
    close(inheritable);
    const auto [arguments, session, descriptors] = Report();
    EXPECT_EQ(arguments, "0:");
    EXPECT_NE(session, std::to_string(getsid(0))) << "a session of its own";
    EXPECT_EQ(descriptors, "0") << "no descriptor handed down";

    std::filesystem::permissions(program, std::filesystem::perms(0600));
    for (const auto& wrong : {folder / "none", folder.Path(), program, std::filesystem::path()})
        EXPECT_FALSE(shell.StartProgram(wrong)) << wrong;
}

TEST_F(LinuxShellTest, OpensPagesOfTheWebAndAddressesOfAnySchemeButNoOptionsOrPaths) {
    LinuxShell shell(program.string());
    for (const char* page :
         {"file:///etc/passwd", "javascript:alert(1)", "--help", "", "http://a b", "https://a\nb"})
        EXPECT_FALSE(shell.OpenPage(page)) << page;
    for (const char* address :
         {"", ":", "mailto:", "--help:x", "/etc/passwd", "a path:x", "mailto:a b", "x:a\nb"})
        EXPECT_FALSE(shell.OpenAddress(address)) << address;
    ASSERT_TRUE(shell.OpenPage("HTTPS://example.org/?a=$(id)&b='\";c"));
    EXPECT_EQ(Report()[0], "1:HTTPS://example.org/?a=$(id)&b='\";c");
    ASSERT_TRUE(shell.OpenAddress("mailto:a@example.org?subject=Korvalin%20V1.2.3"));
    EXPECT_EQ(Report()[0], "1:mailto:a@example.org?subject=Korvalin%20V1.2.3");
}

} // namespace
