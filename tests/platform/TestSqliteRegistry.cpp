#include "fakes/ChildProcess.h"
#include "fakes/FakeClock.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/store/SqliteRegistry.h"

#include <memory>
#include <optional>
#include <sys/resource.h>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

/// A registry with its one key open.
class Store {
  public:
    explicit Store(const fs::path& file) : registry(file, clock) {
        auto disposition = RegistryDisposition::None;
        createCode = registry.CreateKeyEx(RegistryHive::CurrentUser, "Software\\Korvalin",
                                          RegistryAccess::Write, key, disposition);
    }
    int Write(const std::string& name, const std::string& text) {
        return registry.SetValueEx(key, name, text);
    }
    std::optional<std::string> Read(const std::string& name) {
        std::string text;
        const int code = registry.QueryValueEx(key, name, 4096, text);
        return code == ErrorSuccess ? std::optional(text) : std::nullopt;
    }
    std::string Notes() {
        std::string all;
        for (const std::string& note : registry.TakeNotes())
            all += note + "\n";
        return all;
    }

    FakeClock clock{DateSerial(2024, 3, 5) + TimeSerial(7, 8, 9)};
    SqliteRegistry registry;
    RegistryKey key = 0;
    int createCode = -1;
};

class TestSqliteRegistry : public testing::Test {
  protected:
    void Fill(int count) {
        Store store(file);
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(store.Write("Value" + std::to_string(i), std::string(100, 'v')), 0);
    }
    void Overwrite(std::streamoff from, const std::string& bytes) const {
        std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(from);
        stream << bytes;
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
            if (store.Write(std::to_string(i), "text") == 0) written.Send(i);
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
        ASSERT_EQ(store.Read(std::to_string(i)), "text") << i;
    EXPECT_EQ(store.Notes(), "");
}

TEST_F(TestSqliteRegistry, MovesADamagedFileAsideAndBeginsANewOne) {
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"cut in the middle", [&] { fs::resize_file(file, fs::file_size(file) / 2); }},
        {"scribbled over", [&] { Overwrite(8192, std::string(4096, 'x')); }},
        {"another program's", [&] { Overwrite(68, "GPKG"); }},
        {"without its tables", [&] {
             std::string content = folder.Read("korvalin/registry.db");
             for (std::size_t at; (at = content.find("RegistryKeys")) != std::string::npos;)
                 content[at] = 'X';
             Overwrite(0, content);
         }}};
    for (const auto& [what, damage] : rows) {
        fs::remove_all(file.parent_path());
        Fill(200);
        damage();
        const std::string before = folder.Read("korvalin/registry.db");
        Store store(file);
        EXPECT_EQ(store.createCode, ErrorSuccess) << what;
        EXPECT_EQ(store.Read("Value1"), std::nullopt) << what;
        EXPECT_EQ(store.Write("New", "1"), ErrorSuccess) << what;
        EXPECT_EQ(Store(file).Read("New"), "1") << what;
        EXPECT_NE(store.Notes().find(damaged.string()), std::string::npos) << what;
        EXPECT_EQ(folder.Read("korvalin/" + damaged.filename().string()), before) << what;
        EXPECT_EQ(fs::status(damaged).permissions(), fs::perms(0600)) << what;
    }
    Overwrite(0, "damaged again in the same second");
    EXPECT_EQ(Store(file).Write("New", "1"), ErrorSuccess);
    EXPECT_TRUE(fs::exists(damaged.string() + "-2"));
}

TEST_F(TestSqliteRegistry, InstancesThatStartTogetherEndUpInOneStore) {
    for (const bool damagedBefore : {false, true}) {
        fs::remove_all(file.parent_path());
        if (damagedBefore) {
            Fill(1);
            Overwrite(0, "garbage");
        }
        Signal start;
        std::vector<std::unique_ptr<ChildProcess>> instances;
        for (int i = 0; i < 6; ++i) {
            instances.push_back(std::make_unique<ChildProcess>([&] {
                start.Await();
                Store store(file);
                for (int k = 0; k < 20; ++k)
                    EXPECT_EQ(store.Write(std::to_string(i) + " " + std::to_string(k), "1"), ErrorSuccess);
            }));
        }
        for (int i = 0; i < 6; ++i)
            start.Send();
        for (const auto& instance : instances)
            instance->Finish();
        Store store(file);
        std::vector<std::string> names;
        EXPECT_EQ(store.registry.EnumValues(store.key, names), ErrorSuccess);
        EXPECT_EQ(names.size(), 120U);
        EXPECT_EQ(fs::exists(damaged), damagedBefore);
        EXPECT_FALSE(fs::exists(damaged.string() + "-2"));
    }
}

TEST_F(TestSqliteRegistry, DamageThatShowsLaterIsMovedAsideByOneInstanceAndLeftByTheOther) {
    Fill(3000);
    Store first(file);
    Store second(file);
    Overwrite(8192, std::string(static_cast<std::size_t>(fs::file_size(file)) - 8192, 'x'));
    // A write by another makes each drop what it has in memory and read from the file.
    ASSERT_EQ(second.Write("Value0", "1"), ErrorSuccess);
    for (int i = 0; i < 3000 && !fs::exists(damaged); ++i)
        first.Read("Value" + std::to_string(i));
    EXPECT_NE(first.Notes().find(damaged.string()), std::string::npos);
    EXPECT_EQ(first.Write("New", "by the first"), ErrorSuccess);
    EXPECT_EQ(second.Read("New"), "by the first");
    EXPECT_EQ(second.Write("New", "by the second"), ErrorSuccess);
    EXPECT_EQ(first.Read("New"), "by the second");
    EXPECT_EQ(second.Notes(), "");
    EXPECT_FALSE(fs::exists(damaged.string() + "-2"));
}

TEST_F(TestSqliteRegistry, AVanishedFolderIsMadeAgainOrWritesFail) {
    Store store(file);
    ASSERT_EQ(store.Write("a", "1"), ErrorSuccess);
    fs::remove_all(file.parent_path());
    EXPECT_EQ(store.Write("b", "2"), ErrorSuccess);
    EXPECT_EQ(Store(file).Read("b"), "2");
    fs::remove_all(file.parent_path());
    folder.Write("korvalin", "a file where the folder was");
    EXPECT_EQ(store.Write("b", "3"), ErrorWriteFault);
    EXPECT_EQ(store.Read("b"), "2");
    EXPECT_NE(store.Notes(), "");
}

TEST_F(TestSqliteRegistry, AReadOnlyFolderCanBeReadAndRefusesWrites) {
    const WithoutRoot somebody;
    const TemporaryFolder own;
    file = own / "read only? 100%#/registry.db";
    EXPECT_EQ(Store(file).Write("a", "1"), ErrorSuccess);
    fs::permissions(file.parent_path(), fs::perms(0500));
    fs::permissions(file, fs::perms(0400));
    Store store(file);
    EXPECT_EQ(store.Read("a"), "1");
    EXPECT_EQ(store.Write("a", "2"), ErrorAccessDenied);
    fs::permissions(file.parent_path(), fs::perms(0700));
    fs::permissions(file, fs::perms(0600));
    EXPECT_EQ(store.Write("a", "3"), ErrorSuccess);
    EXPECT_EQ(Store(file).Read("a"), "3");
}

TEST_F(TestSqliteRegistry, AFullDiskFailsTheWriteAndNothingElse) {
    Fill(10);
    ChildProcess limited([&] {
        Store store(file);
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit full{64 * 1024, RLIM_INFINITY};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
        int written = 0;
        int code = ErrorSuccess;
        while (written < 1000 && code == ErrorSuccess)
            code = store.Write("New" + std::to_string(written++), "1");
        EXPECT_EQ(code, ErrorWriteFault);
        EXPECT_EQ(store.Read("Value9"), std::string(100, 'v'));
        EXPECT_EQ(store.Read("New0"), "1");
        const rlimit room{RLIM_INFINITY, RLIM_INFINITY};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &room), 0);
        EXPECT_EQ(store.Write("Again", "1"), ErrorSuccess);
    });
    limited.Finish();
    EXPECT_EQ(Store(file).Read("Again"), "1");
}

} // namespace
