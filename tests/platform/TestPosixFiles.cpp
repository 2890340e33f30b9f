#include "fakes/ChildProcess.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/PosixFiles.h"

#include <cerrno>
#include <csignal>
#include <sys/resource.h>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

class PosixFilesTest : public testing::Test {
  protected:
    unsigned ModeOf(const char* name) const {
        return static_cast<unsigned>(fs::status(folder / name).permissions());
    }
    auto Entries() const {
        return std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator());
    }
    // Runs `body` where no file can grow beyond `bytes`.
    static void WithFileLimit(rlim_t bytes, const std::function<void()>& body) {
        ChildProcess limited([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{bytes, RLIM_INFINITY};
            ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
            body();
        });
        limited.Finish();
    }

    TemporaryFolder folder;
    PosixFiles files;
};

TEST_F(PosixFilesTest, AppendsWhollyOrNotAtAllToAPrivateFile) {
    const std::string lines = std::string(90, 'a') + "\n";
    EXPECT_TRUE(files.Append(folder / "log.txt", lines));
    EXPECT_EQ(ModeOf("log.txt"), 0600U);
    WithFileLimit(100, [&] {
        EXPECT_FALSE(files.Append(folder / "log.txt", std::string(50, 'b') + "\n"));
        EXPECT_TRUE(files.Append(folder / "log.txt", "fits\n"));
    });
    EXPECT_EQ(folder.Read("log.txt"), lines + "fits\n");
    for (const fs::path& wrong : {folder / "none/log.txt", folder.Path(), fs::path("/dev/full")})
        EXPECT_FALSE(files.Append(wrong, "x")) << wrong;
}

TEST_F(PosixFilesTest, ReplacesWhollyOrNotAtAll) {
    ASSERT_TRUE(files.Replace(folder / "data.txt", "first"));
    EXPECT_EQ(ModeOf("data.txt"), 0600U);
    fs::permissions(folder / "data.txt", fs::perms(0640));
    ASSERT_TRUE(files.Replace(folder / "data.txt", "second"));
    EXPECT_EQ(ModeOf("data.txt"), 0640U);
    WithFileLimit(100, [&] { EXPECT_FALSE(files.Replace(folder / "data.txt", std::string(200, 'x'))); });
    EXPECT_EQ(folder.Read("data.txt"), "second");
    EXPECT_FALSE(files.Replace(folder / "none/data.txt", "x"));
    EXPECT_FALSE(files.Replace(folder.Path(), "x"));
    EXPECT_EQ(Entries(), 1) << "something half-written is left";
    fs::create_symlink(folder / "data.txt", folder / "link.txt");
    ASSERT_TRUE(files.Replace(folder / "link.txt", "new"));
    EXPECT_EQ(folder.Read("data.txt"), "second") << "the link is replaced, not what it points to";
    EXPECT_EQ(folder.Read("link.txt"), "new");
}

TEST_F(PosixFilesTest, CopiesContentAndPermissions) {
    const std::string content = std::string(200'000, 'x') + std::string("\0end", 4);
    fs::permissions(folder.Write("from", content), fs::perms(0444));
    folder.Write("to", "old");
    EXPECT_TRUE(files.Copy(folder / "from", folder / "to"));
    EXPECT_EQ(folder.Read("to"), content);
    EXPECT_EQ(ModeOf("to"), 0444U);
    EXPECT_FALSE(files.Copy(folder / "none", folder / "to"));
    WithFileLimit(100'000, [&] { EXPECT_FALSE(files.Copy(folder / "from", folder / "to2")); });
    EXPECT_EQ(Entries(), 2);
}

TEST_F(PosixFilesTest, CreatesFoldersForTheUserAlone) {
    folder.Write("file", "");
    fs::create_symlink(folder / "nowhere", folder / "dangling");
    fs::create_directory_symlink(folder.Path(), folder / "here");
    const std::pair<const char*, int> rows[] = {{"a/b/c", 0},        {"a/b/c", 0},        {"a/x/", 0},
                                                {"file", ENOTDIR},   {"file/x", ENOTDIR}, {"here/y", 0},
                                                {"dangling", EEXIST}};
    for (const auto& [path, code] : rows)
        EXPECT_EQ(files.CreateFolders(folder / path), code) << path;
    for (const char* path : {"a", "a/b", "a/b/c", "a/x", "y"})
        EXPECT_EQ(ModeOf(path), 0700U) << path;
    EXPECT_NE(files.CreateFolders(""), 0);
}

TEST(PosixFiles, TellsOfAFolderThatMayNotBeWritten) {
    const WithoutRoot somebody;
    const TemporaryFolder folder;
    folder.Write("data.txt", "old");
    fs::permissions(folder.Path(), fs::perms(0500));
    PosixFiles files;
    EXPECT_EQ(files.CreateFolders(folder / "new"), EACCES);
    EXPECT_FALSE(files.Replace(folder / "data.txt", "new"));
    EXPECT_FALSE(files.Append(folder / "new.txt", "new"));
    EXPECT_EQ(folder.Read("data.txt"), "old");
    fs::permissions(folder.Path(), fs::perms(0700));
}

} // namespace
