#include "fakes/ChildProcess.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/PosixFiles.h"

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

unsigned ModeOf(const fs::path& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

std::size_t EntriesIn(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

// Runs `body` where no file can grow beyond `bytes`.
template <typename Body>
void WithFileLimit(rlim_t bytes, Body&& body) {
    ChildProcess limited([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, RLIM_INFINITY};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        body();
    });
    limited.Finish();
}

TEST(PosixFiles, AppendsLinesToAPrivateFile) {
    const TemporaryFolder folder;
    PosixFiles files;
    EXPECT_TRUE(files.Append(folder / "log.txt", "one\r\n"));
    EXPECT_TRUE(files.Append(folder / "log.txt", "two\r\n"));
    EXPECT_EQ(folder.Read("log.txt"), "one\r\ntwo\r\n");
    EXPECT_EQ(ModeOf(folder / "log.txt"), 0600U);
    EXPECT_FALSE(files.Append(folder / "none/log.txt", "x"));
    EXPECT_FALSE(files.Append(folder.Path(), "x"));
    EXPECT_FALSE(files.Append("/dev/full", "x"));
}

TEST(PosixFiles, AppendsOnAFullDiskWhollyOrNotAtAll) {
    const TemporaryFolder folder;
    folder.Write("log.txt", std::string(90, 'a') + "\n");
    WithFileLimit(100, [&] {
        EXPECT_FALSE(PosixFiles().Append(folder / "log.txt", std::string(50, 'b') + "\n"));
        EXPECT_TRUE(PosixFiles().Append(folder / "log.txt", "fits\n"));
    });
    EXPECT_EQ(folder.Read("log.txt"), std::string(90, 'a') + "\nfits\n");
}

TEST(PosixFiles, ReplacesWhollyOrNotAtAll) {
    const TemporaryFolder folder;
    PosixFiles files;
    ASSERT_TRUE(files.Replace(folder / "data.txt", "first"));
    EXPECT_EQ(ModeOf(folder / "data.txt"), 0600U);
    fs::permissions(folder / "data.txt", fs::perms(0640));
    ASSERT_TRUE(files.Replace(folder / "data.txt", "second"));
    EXPECT_EQ(ModeOf(folder / "data.txt"), 0640U);
    WithFileLimit(100,
                  [&] { EXPECT_FALSE(PosixFiles().Replace(folder / "data.txt", std::string(200, 'x'))); });
    EXPECT_EQ(folder.Read("data.txt"), "second");
    EXPECT_FALSE(files.Replace(folder / "none/data.txt", "x"));
    fs::create_directory(folder / "folder");
    EXPECT_FALSE(files.Replace(folder / "folder", "x"));
    EXPECT_EQ(EntriesIn(folder.Path()), 2U); // nothing half-written is left
}

TEST(PosixFiles, ReplacesALinkAndNotWhatItPointsTo) {
    const TemporaryFolder folder;
    folder.Write("other.txt", "precious");
    fs::create_symlink(folder / "other.txt", folder / "data.txt");
    ASSERT_TRUE(PosixFiles().Replace(folder / "data.txt", "new"));
    EXPECT_EQ(folder.Read("other.txt"), "precious");
    EXPECT_EQ(folder.Read("data.txt"), "new");
}

TEST(PosixFiles, CopiesContentAndPermissions) {
    const TemporaryFolder folder;
    const std::string content = std::string(200'000, 'x') + std::string("\0end", 4);
    fs::permissions(folder.Write("from", content), fs::perms(0444));
    folder.Write("to", "old");
    PosixFiles files;
    EXPECT_TRUE(files.Copy(folder / "from", folder / "to"));
    EXPECT_EQ(folder.Read("to"), content);
    EXPECT_EQ(ModeOf(folder / "to"), 0444U);
    EXPECT_FALSE(files.Copy(folder / "none", folder / "to"));
    EXPECT_FALSE(files.Copy(folder.Path(), folder / "to"));
    WithFileLimit(100'000, [&] { EXPECT_FALSE(PosixFiles().Copy(folder / "from", folder / "to2")); });
    EXPECT_EQ(EntriesIn(folder.Path()), 2U);
}

TEST(PosixFiles, CreatesFoldersForTheUserAlone) {
    const TemporaryFolder folder;
    folder.Write("file", "");
    fs::create_symlink(folder / "nowhere", folder / "dangling");
    fs::create_directory_symlink(folder.Path(), folder / "here");
    struct {
        const char* Path;
        int Code;
    } const rows[] = {{"a/b/c", 0},        {"a/b/c", 0},  {"a/x/", 0},          {"file", ENOTDIR},
                      {"file/x", ENOTDIR}, {"here/y", 0}, {"dangling", EEXIST}, {"dangling/z", EEXIST}};
    for (const auto& row : rows)
        EXPECT_EQ(PosixFiles().CreateFolders(folder / row.Path), row.Code) << row.Path;
    for (const char* path : {"a", "a/b", "a/b/c", "a/x", "y"})
        EXPECT_EQ(ModeOf(folder / path), 0700U) << path;
    EXPECT_NE(PosixFiles().CreateFolders(""), 0);
    EXPECT_EQ(PosixFiles().CreateFolders("/"), 0);
}

TEST(PosixFiles, TellsOfAFolderThatMayNotBeWritten) {
    const WithoutRoot somebody;
    const TemporaryFolder folder;
    folder.Write("data.txt", "old");
    fs::permissions(folder.Path(), fs::perms(0500));
    PosixFiles files;
    EXPECT_EQ(files.CreateFolders(folder / "new"), EACCES);
    EXPECT_EQ(files.CreateFolders(folder.Path()), 0);
    EXPECT_FALSE(files.Replace(folder / "data.txt", "new"));
    EXPECT_FALSE(files.Append(folder / "new.txt", "new"));
    EXPECT_EQ(folder.Read("data.txt"), "old");
    fs::permissions(folder.Path(), fs::perms(0700));
}

} // namespace
} // namespace korvalin
