#include "fakes/ChildProcess.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/files/Descriptor.h"
#include "platform/linux/files/PosixFiles.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

class PosixFilesTest : public testing::Test {
  protected:
    unsigned ModeOf(const char* name) const {
        return static_cast<unsigned>(fs::status(folder / name).permissions());
    }
    std::size_t Entries() const { return folder.Entries().size(); }

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
}

TEST_F(PosixFilesTest, ReplacesWhollyOrNotAtAll) {
    ASSERT_TRUE(files.Replace(folder / "data.txt", "first"));
    EXPECT_EQ(ModeOf("data.txt"), 0600U);
    fs::permissions(folder / "data.txt", fs::perms(0640));
    ASSERT_TRUE(files.Replace(folder / "data.txt", "second"));
    EXPECT_EQ(ModeOf("data.txt"), 0640U);
    WithFileLimit(100, [&] { EXPECT_FALSE(files.Replace(folder / "data.txt", std::string(200, 'x'))); });
    EXPECT_EQ(folder.Read("data.txt"), "second");
    EXPECT_FALSE(files.Replace(folder.Path(), "x"));
    EXPECT_EQ(Entries(), 1) << "something half-written is left";
    fs::create_symlink(folder / "data.txt", folder / "link.txt");
    ASSERT_TRUE(files.Replace(folder / "link.txt", "new"));
    EXPECT_EQ(folder.Read("data.txt"), "second") << "the link is replaced, not what it points to";
    EXPECT_EQ(folder.Read("link.txt"), "new");
}

TEST_F(PosixFilesTest, AppendsDurablyWhollyOrNotAtAll) {
    const auto append = [&](const fs::path& path) {
        return files.AppendLines(path, "head\n", "line\n", "\n", Files::Flush::Yes, Files::Wait::ForRewrite);
    };
    const std::string full(98, 'x');
    const std::pair<std::string, std::string> rows[] = {
        {"", "head\nline\n"}, {"whole\n", "whole\nline\n"}, {"torn", "torn\nline\n"}, {full, full}};
    for (const auto& [before, after] : rows) {
        folder.Write("data.txt", before);
        WithFileLimit(100, [&] { EXPECT_EQ(append(folder / "data.txt"), before == full ? ENOSPC : 0); });
        EXPECT_EQ(folder.Read("data.txt"), after);
    }
    EXPECT_EQ(append(folder / "new.txt"), 0);
    EXPECT_EQ(folder.Read("new.txt"), "head\nline\n");
    EXPECT_EQ(ModeOf("new.txt"), 0600U);
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const std::pair<fs::path, int> wrong[] = {
        {folder / "none/data.txt", ENOENT}, {folder.Path(), EISDIR}, {folder / "pipe", EINVAL}};
    for (const auto& [path, error] : wrong) {
        EXPECT_EQ(append(path), error) << path;
        EXPECT_FALSE(files.Append(path, "line\n")) << path;
    }
}

TEST_F(PosixFilesTest, FollowsNoLinkThatSomebodyHasPutInTheFilesPlace) {
    const fs::path victim = folder.Write("victim", "as it was\n");
    fs::permissions(victim, fs::perms(0644));
    const fs::path link = folder / "data.txt";
    fs::create_symlink(victim, link);
    EXPECT_FALSE(files.Append(link, "line\n"));
    EXPECT_EQ(files.AppendLines(link, "", "line\n", "\n", Files::Flush::Yes, Files::Wait::ForRewrite), ELOOP);
    EXPECT_EQ(files.Hold(link), nullptr);
    EXPECT_FALSE(files.Copy(link, folder / "copy"));
    EXPECT_EQ(folder.Read("victim"), "as it was\n");
    EXPECT_EQ(ModeOf("victim"), 0644U);
}

TEST_F(PosixFilesTest, WaitsForAFileThatIsHeldAndThenGivesUp) {
    const Descriptor flocked(open(folder.Write("flocked", "").c_str(), O_RDWR));
    ASSERT_EQ(flock(flocked.Get(), LOCK_EX), 0);
    const Descriptor locked(open(folder.Write("locked", "").c_str(), O_RDWR));
    struct flock whole {};
    whole.l_type = F_WRLCK;
    ASSERT_EQ(fcntl(locked.Get(), F_SETLK, &whole), 0);
    const auto isHeld = [&](const char* name) {
        EXPECT_EQ(files.Hold(folder / name), nullptr) << name;
        EXPECT_EQ(
            files.AppendLines(folder / name, "", "line\n", "\n", Files::Flush::Yes, Files::Wait::ForRewrite),
            EAGAIN)
            << name;
    };
    // Forked before the file is held: a lock lives until the last copy of its descriptor is closed.
    folder.Write("data", "");
    Signal held, begun;
    ChildProcess one([&] { isHeld("flocked"); });
    ChildProcess two([&] { isHeld("locked"); });
    ChildProcess patient([&] {
        held.Await();
        EXPECT_EQ(files.Hold(folder / "data"), nullptr);
        begun.Send();
        EXPECT_EQ(files.AppendLines(folder / "data", "", "line\n", "\n", Files::Flush::Yes,
                                    Files::Wait::ForRewrite),
                  0);
    });
    std::unique_ptr<FileLock> hold = files.Hold(folder / "data");
    EXPECT_NE(hold, nullptr);
    EXPECT_EQ(files.Hold(folder / "none"), nullptr);
    held.Send();
    begun.Await();
    EXPECT_EQ(folder.Read("data"), "");
    hold.reset();
    patient.Finish();
    EXPECT_EQ(folder.Read("data"), "line\n");
    one.Finish();
    two.Finish();
    EXPECT_EQ(folder.Read("flocked") + folder.Read("locked"), "");
}

TEST_F(PosixFilesTest, ReplacesAndKeepsTheOldFileUnderAnotherName) {
    const auto replace = [&](const char* kept, std::string_view content) {
        return files.ReplaceKeeping(folder / "data", folder / kept, [&](const Files::Sink& sink) {
            return sink(content.substr(0, 2)) && sink(content.substr(2));
        });
    };
    fs::permissions(folder.Write("data", "old"), fs::perms(0640));
    fs::create_symlink(folder / "elsewhere", folder / "data.new"); // nothing is written through it
    ASSERT_TRUE(replace("kept", "new content"));
    EXPECT_EQ(ModeOf("data"), 0640U);
    EXPECT_FALSE(replace("kept", "newer")) << "the name is taken";
    EXPECT_FALSE(files.ReplaceKeeping(folder / "data", folder / "kept2", [](const auto&) { return false; }));
    WithFileLimit(10, [&] { EXPECT_FALSE(replace("kept2", std::string(20, 'x'))); });
    EXPECT_EQ(folder.Read("data") + " " + folder.Read("kept"), "new content old");
    EXPECT_EQ(Entries(), 2) << "something half-written is left";
}

TEST_F(PosixFilesTest, CopiesContentAndPermissions) {
    const std::string content = std::string(200'000, 'x') + std::string("\0end", 4);
    fs::permissions(folder.Write("from", content), fs::perms(0444));
    folder.Write("to", "old");
    EXPECT_TRUE(files.Copy(folder / "from", folder / "to"));
    EXPECT_EQ(folder.Read("to"), content);
    EXPECT_EQ(ModeOf("to"), 0444U);
    WithFileLimit(100'000, [&] { EXPECT_FALSE(files.Copy(folder / "from", folder / "to2")); });
    EXPECT_EQ(Entries(), 2);
}

/// Gives a user who is not us the right to write, by an access list; false where the file system has none.
bool LetAnotherWrite(const fs::path& path) {
    struct Entry {
        std::uint16_t Kind, Rights;
        std::uint32_t Id;
    };
    constexpr std::uint32_t nobody = ~0U;
    const struct {
        std::uint32_t Version = 2;
        // The owner, another user, the group, the mask, and everybody else.
        Entry Entries[5] = {
            {1, 7, nobody}, {2, 7, geteuid() + 1}, {4, 5, nobody}, {16, 7, nobody}, {32, 5, nobody}};
    } list;
    return setxattr(path.c_str(), "system.posix_acl_access", &list, sizeof list, 0) == 0;
}

TEST_F(PosixFilesTest, KnowsAFileThatNobodyElseCanWrite) {
    fs::create_directories(folder / "inner");
    const fs::path file = folder.Write("inner/file", "content");
    const fs::path inner = folder / "inner";
    const auto check = [&](fs::perms ofFile, fs::perms ofFolder) {
        fs::permissions(file, ofFile);
        fs::permissions(inner, ofFolder);
        return files.IsOursAlone(file);
    };
    EXPECT_FALSE(check(fs::perms(0757), fs::perms(0755)));
    EXPECT_FALSE(check(fs::perms(0755), fs::perms(0757)));
    EXPECT_TRUE(check(fs::perms(0755), fs::perms(0755)));
    EXPECT_TRUE(check(fs::perms(0775), fs::perms(0775))) << "a group of our own";
    if (LetAnotherWrite(inner)) {
        EXPECT_FALSE(files.IsOursAlone(file));
        EXPECT_TRUE(check(fs::perms(0755), fs::perms(0755))) << "a mask lets nobody else write";
    }
    fs::create_symlink(file, folder / "link");
    EXPECT_FALSE(files.IsOursAlone(folder / "link"));
    fs::create_hard_link(file, folder / "second");
    EXPECT_FALSE(files.IsOursAlone(file));
    EXPECT_FALSE(files.IsOursAlone(inner));
    EXPECT_FALSE(files.IsOursAlone(folder / "missing"));
}

TEST_F(PosixFilesTest, CreatesFoldersForTheUserAlone) {
    folder.Write("file", "");
    fs::create_symlink(folder / "nowhere", folder / "dangling");
    fs::create_directory_symlink(folder.Path(), folder / "here");
    const std::pair<const char*, int> rows[] = {
        {"a/b/c", 0}, {"a/x/", 0}, {"here/y", 0}, {"file/x", ENOTDIR}, {"dangling", EEXIST}};
    for (const auto& [path, code] : rows)
        for (int time = 1; time <= 2; ++time)
            EXPECT_EQ(files.CreateFolders(folder / path), code) << path;
    for (const char* path : {"a", "a/b", "a/b/c", "a/x", "y"})
        EXPECT_EQ(ModeOf(path), 0700U) << path;
    EXPECT_NE(files.CreateFolders(""), 0);
}

} // namespace
