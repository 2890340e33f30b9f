#include "fakes/ChildProcess.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeFiles.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/store/SqliteRegistry.h"

#include <sqlite3.h>

#include <memory>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

constexpr std::string_view keyPath = "Software\\Korvalin";

class Store {
  public:
    explicit Store(const fs::path& file) : registry(file, {files, "/nowhere"}, clock) {}
    bool Write(const std::string& name, const std::string& text = "1") {
        return registry.RegWriteString(keyPath, name, text);
    }
    std::string Read(const std::string& name) { return registry.RegReadString(keyPath, name); }
    bool TellsOf(const fs::path& aside) {
        const std::vector<std::string> notes = registry.TakeNotes();
        return notes.size() == 1 && notes[0].ends_with(": " + aside.string());
    }

    FakeFiles files;
    FakeClock clock{DateSerial(2024, 3, 5) + TimeSerial(7, 8, 9)};
    SqliteRegistry registry;
};

class TestSqliteRegistry : public testing::Test {
  protected:
    void Fill(int count) {
        Store store(file);
        for (int i = 0; i < count; ++i)
            ASSERT_TRUE(store.Write("Value" + std::to_string(i), std::string(100, 'v')));
    }
    void Execute(const char* sql) const {
        SqliteDatabase database;
        ASSERT_EQ(database.OpenFile(file, SQLITE_OPEN_READWRITE, 1000), SQLITE_OK);
        ASSERT_EQ(database.Execute(sql), SQLITE_OK);
    }

    TemporaryFolder folder;
    fs::path file = folder / "korvalin/registry.db";
    fs::path damaged = folder / "korvalin/registry.db.damaged_20240305-070809";
};

TEST_F(TestSqliteRegistry, AKilledWriterLosesNothingItWasToldIsWritten) {
    Signal written;
    ChildProcess writer([&] {
        Store store(file);
        for (int i = 1;; ++i)
            if (store.Write(std::to_string(i))) written.Send(i);
    });
    int acknowledged = 0;
    while (acknowledged < 300)
        acknowledged = written.Await();
    writer.Kill();
    written.CloseWriteEnd();
    while (read(written.ReadEnd(), &acknowledged, sizeof acknowledged) > 0)
        continue;
    Store store(file);
    for (int i = 1; i <= acknowledged; ++i)
        ASSERT_EQ(store.Read(std::to_string(i)), "1") << i;
    EXPECT_TRUE(store.registry.TakeNotes().empty());
}

TEST_F(TestSqliteRegistry, FindsNamesThatAnEarlierReleaseFoldedOtherwise) {
    ASSERT_TRUE(Store(file).Write("ЖАБА_Alias", "kept"));
    Execute("UPDATE RegistryValues SET LowerName = 'ЖАБА_alias'");
    EXPECT_EQ(Store(file).Read("жаба_Alias"), "kept");
}

TEST_F(TestSqliteRegistry, MovesADamagedFileAsideAndBeginsANewOne) {
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"cut in the middle", [&] { fs::resize_file(file, fs::file_size(file) / 2); }},
        {"scribbled over", [&] { folder.Overwrite(file, 8192, std::string(4096, 'x')); }},
        {"another program's", [&] { folder.Overwrite(file, 68, "GPKG"); }},
        {"without its tables", [&] { Execute("DROP TABLE RegistryKeys"); }}};
    for (const auto& [what, damage] : rows) {
        fs::remove_all(file.parent_path());
        Fill(200);
        damage();
        const std::string before = folder.Read(file);
        Store store(file);
        EXPECT_TRUE(store.Write("New")) << what;
        EXPECT_EQ(Store(file).Read("New") + Store(file).Read("Value1"), "1") << what;
        EXPECT_TRUE(store.TellsOf(damaged)) << what;
        EXPECT_EQ(folder.Read(damaged), before) << what;
        EXPECT_EQ(fs::status(damaged).permissions(), fs::perms(0600)) << what;
    }
    folder.Overwrite(file, 0, "damaged again in the same second");
    EXPECT_TRUE(Store(file).Write("New"));
    EXPECT_TRUE(fs::exists(damaged.string() + "-2"));
}

TEST_F(TestSqliteRegistry, InstancesThatStartTogetherEndUpInOneStore) {
    for (const bool damagedBefore : {false, true}) {
        fs::remove_all(file.parent_path());
        if (damagedBefore) {
            Fill(1);
            folder.Overwrite(file, 0, "garbage");
        }
        Signal start;
        std::vector<std::unique_ptr<ChildProcess>> instances;
        for (int i = 0; i < 6; ++i) {
            instances.push_back(std::make_unique<ChildProcess>([&] {
                start.Await();
                Store store(file);
                for (int k = 0; k < 20; ++k)
                    EXPECT_TRUE(store.Write(std::to_string(i) + " " + std::to_string(k)));
            }));
        }
        for (int i = 0; i < 6; ++i)
            start.Send();
        for (const auto& instance : instances)
            instance->Finish();
        EXPECT_EQ(Store(file).registry.RegValueNames(keyPath).size(), 120U);
        EXPECT_EQ(fs::exists(damaged), damagedBefore);
        EXPECT_FALSE(fs::exists(damaged.string() + "-2"));
    }
}

TEST_F(TestSqliteRegistry, DamageThatShowsLaterIsMovedAsideByOneInstanceAndLeftByTheOther) {
    Fill(3000);
    Store first(file);
    Store second(file);
    folder.Overwrite(file, 8192, std::string(static_cast<std::size_t>(fs::file_size(file)) - 8192, 'x'));
    // A write by another makes each drop what it has in memory and read from the file.
    ASSERT_TRUE(second.Write("Value0"));
    for (int i = 0; i < 3000 && !fs::exists(damaged); ++i)
        first.Read("Value" + std::to_string(i));
    EXPECT_TRUE(first.TellsOf(damaged));
    EXPECT_TRUE(first.Write("New", "by the first"));
    EXPECT_EQ(second.Read("New"), "by the first");
    EXPECT_TRUE(second.Write("New", "by the second"));
    EXPECT_EQ(first.Read("New"), "by the second");
    EXPECT_TRUE(second.registry.TakeNotes().empty());
    EXPECT_FALSE(fs::exists(damaged.string() + "-2"));
}

TEST_F(TestSqliteRegistry, AVanishedFolderIsMadeAgainOrWritesFail) {
    Store store(file);
    ASSERT_TRUE(store.Write("a"));
    fs::remove_all(file.parent_path());
    EXPECT_TRUE(store.Write("b", "2"));
    EXPECT_EQ(Store(file).Read("b"), "2");
    fs::remove_all(file.parent_path());
    folder.Write("korvalin", "a file where the folder was");
    EXPECT_FALSE(store.Write("b", "3"));
    EXPECT_EQ(store.Read("b"), "2");
    EXPECT_FALSE(store.registry.TakeNotes().empty());
}

TEST_F(TestSqliteRegistry, FollowsALinkToItsFolderAndNoneInTheFilesPlace) {
    const fs::path link = folder / "link";
    fs::create_directory_symlink(file.parent_path(), link);
    Fill(1);
    EXPECT_TRUE(Store(link / "registry.db").Write("Name", "by the link"));
    EXPECT_EQ(Store(file).Read("Name"), "by the link");
    const fs::path planted = folder / "planted.db";
    fs::create_symlink(file, planted);
    fs::permissions(file, fs::perms(0644));
    static_cast<void>(Store(planted).Write("Name", "over the link"));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0644));
    EXPECT_EQ(Store(file).Read("Name"), "by the link");
}

TEST_F(TestSqliteRegistry, AReadOnlyFolderCanBeReadAndRefusesWrites) {
    const WithoutRoot somebody;
    const TemporaryFolder own;
    file = own / "read only? 100%#/registry.db";
    EXPECT_TRUE(Store(file).Write("a"));
    fs::permissions(file.parent_path(), fs::perms(0500));
    fs::permissions(file, fs::perms(0400));
    Store store(file);
    EXPECT_EQ(store.Read("a"), "1");
    EXPECT_FALSE(store.Write("a", "2"));
    fs::permissions(file.parent_path(), fs::perms(0700));
    fs::permissions(file, fs::perms(0600));
    EXPECT_TRUE(store.Write("a", "3"));
    EXPECT_EQ(Store(file).Read("a"), "3");
}

} // namespace
