#include "fakes/ChildProcess.h"
#include "fakes/FakeJournal.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/store/SqliteJournal.h"

#include <fmt/format.h>

#include <limits>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;
using Durability = Journal::Durability;

/// All of it, each number bit for bit.
std::string Describe(const JournalFound& found) {
    std::string text = fmt::format("known {} same boot {}\n", found.KnowsMachine, found.SameBoot);
    for (const JournalEntry& e : found.Picture.Entries) {
        text += fmt::format("{} {} {} {} {:a}\n", e.Index, e.Adapter, e.Received, e.Transmitted, e.ReadAt);
        if (!e.Open) continue;
        const OpenConnection& o = *e.Open;
        text += fmt::format("  {} {:a} {:a} {:a} {:a} {} {} {} {}\n", o.LineName, o.LogIn, o.End,
                            o.BytesReceived, o.BytesTransmitted, o.User, o.IpAddress, o.IsRas, o.Recorded);
    }
    for (const PendingRecord& record : found.Picture.Pending)
        text += fmt::format("pending {} {}\n", record.StatLine, record.ExportLine);
    for (const auto& [line, end] : found.Picture.LastEnds)
        text += fmt::format("{} ended {:a}\n", line, end);
    return text;
}

JournalPicture PictureOf(const std::string& line) {
    JournalPicture picture;
    picture.Entries.push_back(
        {7, "eth0", 100, 200, 45000.1, OpenConnection{line, 45000, 45000.1, 10, 20, "", ""}});
    picture.Entries.push_back({3, "wlan0", 300, 400, 45000.1, std::nullopt});
    return picture;
}

JournalPicture OddPicture() {
    const double third = 1.0 / 3;
    const auto most = std::numeric_limits<std::uint64_t>::max();
    JournalPicture picture;
    picture.Entries.push_back({std::numeric_limits<std::uint32_t>::max(), std::string("\0\x80'\xff", 4), most,
                               most / 2 + 1, -0.0,
                               OpenConnection{"", third, 1e300, -0.0, 5e-324, "us\"er", "::1", true, true}});
    picture.Entries.push_back({1, "", 0, 1, third, OpenConnection{"Büro", 1, 2, 3, 4, "", "", false, true}});
    picture.Entries.push_back({1, "", 0, 1, 0, std::nullopt});
    picture.Pending = {{"z", "first\n"}, {"a", ""}, {"z", "first\n"}};
    picture.LastEnds = {{"", -1}, {"b\xff", third}};
    return picture;
}

/// A note that makes all counters of the picture's open connection 1000 more.
JournalNote NoteOf(std::uint64_t more = 1000) {
    const auto bytes = static_cast<double>(more);
    return {7, 100 + more, 200 + more, 45000.2, 10 + bytes, 20 + bytes, 45000.2};
}

JournalPicture Noted(JournalPicture picture, std::uint64_t more = 1000) {
    JournalEntry& entry = picture.Entries.at(0);
    const JournalNote note = NoteOf(more);
    entry.Received = note.Received;
    entry.Transmitted = note.Transmitted;
    entry.ReadAt = entry.Open->End = 45000.2;
    entry.Open->BytesReceived = note.OpenReceived;
    entry.Open->BytesTransmitted = note.OpenTransmitted;
    return picture;
}

struct Fake {
    TemporaryFolder Data;
    FakeJournal Tested;
};
struct Sqlite {
    TemporaryFolder Data, Runtime;
    SqliteJournal Tested{"machine", "boot", Runtime.Path()};
};

/// What every journal must do.
template <typename BackEnd>
class JournalContract : public testing::Test {
  protected:
    bool Save(const JournalPicture& picture, Durability durability = Durability::Medium) {
        return backEnd.Tested.Save(backEnd.Data.Path(), picture, durability);
    }
    void ExpectFound(const JournalFound& expected) {
        EXPECT_EQ(Describe(backEnd.Tested.Load(backEnd.Data.Path())), Describe(expected));
        EXPECT_EQ(Describe(backEnd.Tested.Look(backEnd.Data.Path())), Describe(expected));
    }
    BackEnd backEnd;
};

using BackEnds = testing::Types<Fake, Sqlite>;
TYPED_TEST_SUITE(JournalContract, BackEnds);

TYPED_TEST(JournalContract, ThePictureComesBackAsItWasLastSaved) {
    this->ExpectFound({});
    for (const JournalPicture& picture : {JournalPicture(), PictureOf("A"), OddPicture(), JournalPicture()}) {
        for (const Durability durability : {Durability::Medium, Durability::Process}) {
            EXPECT_TRUE(this->Save(picture, durability));
            this->ExpectFound({true, true, picture});
        }
    }
}

TYPED_TEST(JournalContract, NotesHoldForOpenConnectionsUntilTheNextSave) {
    ASSERT_TRUE(this->Save(PictureOf("A")));
    for (const std::uint64_t more : {1, 1000})
        this->backEnd.Tested.Note({NoteOf(more), {3, 1, 1, 1, 1, 1, 1}, {99, 1, 1, 1, 1, 1, 1}});
    this->ExpectFound({true, true, Noted(PictureOf("A"))});
    ASSERT_TRUE(this->Save(PictureOf("B"), Durability::Process));
    this->ExpectFound({true, true, PictureOf("B")});
    this->backEnd.Tested.Note({NoteOf()});
    this->ExpectFound({true, true, Noted(PictureOf("B"))});
}

class TestSqliteJournal : public testing::Test {
  protected:
    std::unique_ptr<SqliteJournal> Make(const std::string& machine = "machine") const {
        return std::make_unique<SqliteJournal>(machine, "boot", runtime.Path());
    }
    std::string Load(const std::string& machine = "machine") const {
        return Describe(Make(machine)->Load(data.Path()));
    }
    std::string Look() const { return Describe(Make()->Look(data.Path())); }
    static std::string Known(const JournalPicture& picture) { return Describe({true, true, picture}); }
    static std::string Unknown() { return Describe({}); }

    bool Save(const JournalPicture& picture) {
        return journal->Save(data.Path(), picture, Durability::Process);
    }
    /// What a writer leaves that is killed after a Save and a Note.
    void LeaveNotes() const {
        Signal written;
        ChildProcess writer([&] {
            auto own = Make();
            EXPECT_TRUE(own->Save(data.Path(), PictureOf("A"), Durability::Process));
            own->Note({NoteOf()});
            written.Send();
            pause();
        });
        written.Await();
        writer.Kill();
    }
    static std::set<fs::path> FilesIn(const TemporaryFolder& folder) {
        std::set<fs::path> files;
        for (const auto& entry : fs::directory_iterator(folder.Path()))
            files.insert(entry.path());
        return files;
    }
    static fs::path OnlyFileIn(const TemporaryFolder& folder) {
        EXPECT_EQ(FilesIn(folder).size(), 1U);
        return *FilesIn(folder).begin();
    }
    static std::string ContentOf(const fs::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// All files, with the content of those that hold something.
    std::string Everything() const {
        std::string all;
        for (const TemporaryFolder* folder : {&data, &runtime})
            for (const fs::path& path : FilesIn(*folder))
                all += path.string() + (path.string().ends_with("-shm") ? "" : ContentOf(path));
        return all;
    }

    TemporaryFolder data, another, runtime;
    fs::path file = data / JournalFileName;
    std::unique_ptr<SqliteJournal> journal = Make();
};

TEST_F(TestSqliteJournal, MachinesDoNotSeeEachOther) {
    ASSERT_TRUE(Save(PictureOf("A")));
    EXPECT_EQ(Load("other"), Unknown());
    const auto other = Make("other");
    ASSERT_TRUE(other->Save(data.Path(), OddPicture(), Durability::Process));
    journal->Note({NoteOf()});
    ASSERT_TRUE(other->Save(data.Path(), JournalPicture(), Durability::Process));
    EXPECT_EQ(Load(), Known(Noted(PictureOf("A"))));
    EXPECT_EQ(Load("other"), Known({}));
    const JournalFound later = SqliteJournal("machine", "next boot", runtime.Path()).Load(data.Path());
    EXPECT_EQ(Describe(later), Describe({true, false, Noted(PictureOf("A"))}));
}

TEST_F(TestSqliteJournal, IsLookedAtWithoutATraceBesideItsWriterAfterAKillAndAfterItsEnd) {
    EXPECT_EQ(Look(), Unknown());
    EXPECT_TRUE(FilesIn(data).empty());
    ASSERT_TRUE(Make()->Save(data.Path(), {}, Durability::Process));
    Signal written;
    Signal goOn;
    ChildProcess writer([&] {
        for (const char* line : {"A", "B", "C"}) {
            EXPECT_TRUE(Save(PictureOf(line)));
            journal->Note({NoteOf()});
            written.Send();
            goOn.Await();
        }
    });
    const auto expectLook = [&](const std::string& found) {
        const std::string before = Everything();
        EXPECT_EQ(Look(), found);
        EXPECT_EQ(Everything(), before) << found;
    };
    for (const char* line : {"A", "B", "C"}) {
        written.Await();
        expectLook(Known(Noted(PictureOf(line))));
        if (*line != 'C') goOn.Send();
    }
    writer.Kill();
    expectLook(Known(Noted(PictureOf("C"))));
    EXPECT_EQ(Load(), Known(Noted(PictureOf("C")))) << "closes the file as a writer does at its end";
    EXPECT_EQ(FilesIn(data), std::set{file});
    expectLook(Known(Noted(PictureOf("C"))));
}

TEST_F(TestSqliteJournal, NotesThatAreNotWholeOrAnotherJournalsAreLeftOut) {
    const TemporaryFolder elsewhere;
    SqliteJournal foreign("machine", "boot", elsewhere.Path());
    ASSERT_TRUE(foreign.Save(another.Path(), PictureOf("A"), Durability::Process));
    foreign.Note({NoteOf()});
    const std::string foreignNotes = ContentOf(OnlyFileIn(elsewhere));
    fs::path notes;
    const auto write = [&](const std::string& content) { std::ofstream(notes) << content; };
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"another journal's", [&] { write(foreignNotes); }},
        {"empty", [&] { write(""); }},
        {"cut in the header", [&] { fs::resize_file(notes, 20); }},
        {"cut in a note", [&] { fs::resize_file(notes, fs::file_size(notes) - 1); }},
        {"torn", [&] { write(ContentOf(notes).replace(60, 8, "        ")); }},
        {"behind a link", [&] {
             fs::rename(notes, elsewhere / "moved");
             fs::create_symlink(elsewhere / "moved", notes);
         }}};
    for (const auto& [what, change] : rows) {
        LeaveNotes();
        notes = OnlyFileIn(runtime);
        ASSERT_EQ(Load(), Known(Noted(PictureOf("A")))) << what;
        change();
        EXPECT_EQ(Load(), Known(PictureOf("A"))) << what;
        EXPECT_EQ(Look(), Known(PictureOf("A"))) << what;
    }
}

TEST_F(TestSqliteJournal, NotesAreWrittenWhenTheyDifferAndRemovedWithTheLastOpenConnection) {
    LeaveNotes();
    const fs::path earlier = OnlyFileIn(runtime);
    EXPECT_EQ(journal->Load(data.Path()).Picture.Entries.size(), 2U);
    journal->Note({NoteOf()});
    EXPECT_EQ(OnlyFileIn(runtime), earlier) << "belongs to no Save of this run";
    ASSERT_TRUE(Save(PictureOf("A")));
    EXPECT_TRUE(FilesIn(runtime).empty()) << "the earlier run's";
    journal->Note({NoteOf(1), NoteOf(2)});
    const fs::path notes = OnlyFileIn(runtime);
    std::ofstream(notes) << "touched";
    journal->Note({NoteOf(1), NoteOf(2)});
    EXPECT_EQ(ContentOf(notes), "touched") << "the same again";
    journal->Note({NoteOf()});
    EXPECT_EQ(Load(), Known(Noted(PictureOf("A"))));
    fs::remove(notes);
    journal->Note({NoteOf()});
    EXPECT_EQ(Load(), Known(Noted(PictureOf("A")))) << "made anew";
    ASSERT_TRUE(Save({}));
    EXPECT_TRUE(FilesIn(runtime).empty());
}

TEST_F(TestSqliteJournal, FilesAreTheUsersAloneAlsoWithoutAFolderForNotes) {
    for (const fs::path& folder : {fs::path(), runtime / "none", runtime.Path()}) {
        SqliteJournal own("machine", "boot", folder);
        ASSERT_TRUE(own.Save(data.Path(), PictureOf("A"), Durability::Process));
        own.Note({NoteOf()});
        EXPECT_EQ(Describe(own.Load(data.Path())), Known(Noted(PictureOf("A"))));
        std::set<fs::path> files = FilesIn(data);
        files.merge(FilesIn(runtime));
        EXPECT_EQ(files.size(), 4U) << "the database, its log and index, the notes";
        for (const fs::path& path : files)
            EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600)) << path;
        fs::permissions(file, fs::perms(0644));
    }
}

TEST_F(TestSqliteJournal, WhatIsNoJournalIsMovedAsideAndANewOneBegun) {
    const auto write = [&](const fs::path& path, std::streamoff from, const std::string& bytes) {
        std::fstream stream(path, std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(from);
        stream << bytes;
    };
    const fs::path target = another.Write("target", "not to be touched");
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"garbage", [&] { write(file, 0, "garbage"); }},
        {"cut in the middle", [&] { fs::resize_file(file, fs::file_size(file) / 2); }},
        {"another program's", [&] { write(file, 68, "GPKG"); }},
        {"without its tables", [&] { write(file, 100, std::string(4000, '\0')); }},
        {"a folder",
         [&] {
             fs::remove(file);
             fs::create_directories(file / "folder");
         }},
        {"a link",
         [&] {
             fs::remove(file);
             fs::create_symlink(target, file);
         }},
        {"a pipe", [&] {
             fs::remove(file);
             ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
         }}};
    for (const auto& [what, damage] : rows) {
        ASSERT_TRUE(Save(PictureOf("A"))) << what;
        journal = Make();
        damage();
        const fs::file_status before = fs::symlink_status(file);
        EXPECT_EQ(Look(), Unknown()) << what;
        EXPECT_EQ(FilesIn(data), std::set{file}) << what;
        EXPECT_EQ(Load(), Unknown()) << what;
        EXPECT_EQ(fs::symlink_status(file.string() + "_1").type(), before.type()) << what;
        ASSERT_TRUE(Save(PictureOf("B"))) << what;
        EXPECT_EQ(Load(), Known(PictureOf("B"))) << what;
        journal = Make();
        for (const fs::path& path : FilesIn(data))
            fs::remove_all(path);
    }
    fs::create_symlink(target, file.string() + "-wal");
    EXPECT_TRUE(Save(PictureOf("B")));
    std::ofstream(file.string() + "_1") << "here already";
    ASSERT_TRUE(Make("other")->Save(data.Path(), {}, Durability::Process)) << "what is in memory is outdated";
    for (const fs::path& path : {file, fs::path(file.string() + "-wal")})
        write(path, 32, std::string(fs::file_size(path) - 32, 'x'));
    EXPECT_TRUE(Save(PictureOf("C"))) << "damage that shows while it is open";
    EXPECT_EQ(Load(), Known(PictureOf("C")));
    EXPECT_TRUE(fs::exists(file.string() + "_2"));
    EXPECT_EQ(ContentOf(target), "not to be touched");
}

TEST_F(TestSqliteJournal, FollowsTheProgramIntoAnotherFolder) {
    for (const bool shared : {false, true}) {
        ASSERT_TRUE(!shared || Make("other")->Save(data.Path(), PictureOf("O"), Durability::Process));
        ASSERT_TRUE(Save(PictureOf("A")));
        journal->Note({NoteOf()});
        ASSERT_FALSE(journal->Save(data / "none", PictureOf("B"), Durability::Process));
        EXPECT_EQ(Load(), Known(Noted(PictureOf("A")))) << "as long as the other folder does not take it";
        ASSERT_TRUE(journal->Save(another.Path(), PictureOf("B"), Durability::Process));
        EXPECT_EQ(Load(), Unknown());
        EXPECT_EQ(Load("other"), shared ? Known(PictureOf("O")) : Unknown());
        EXPECT_EQ(FilesIn(data).empty(), !shared);
        EXPECT_TRUE(FilesIn(runtime).empty());
        EXPECT_EQ(Describe(Make()->Load(another.Path())), Known(PictureOf("B")));
        ASSERT_TRUE(Save(PictureOf("A"))) << "and back";
        EXPECT_TRUE(FilesIn(another).empty());
    }
    fs::create_directory_symlink(data.Path(), another / "link");
    ASSERT_TRUE(journal->Save(another / "link", PictureOf("B"), Durability::Process));
    EXPECT_EQ(Load(), Known(PictureOf("B"))) << "the same folder";
    fs::remove(file);
    ASSERT_TRUE(Save(PictureOf("C")));
    EXPECT_EQ(Load(), Known(PictureOf("C"))) << "made anew";
    fs::rename(data.Path(), another / "renamed");
    ASSERT_TRUE(journal->Save(another / "renamed", PictureOf("D"), Durability::Process));
    EXPECT_EQ(Describe(Make()->Load(another / "renamed")), Known(PictureOf("D")));
}

TEST_F(TestSqliteJournal, AFolderThatTakesNothingIsReadAndKeepsTheOldPicture) {
    const WithoutRoot somebody;
    const TemporaryFolder own;
    ASSERT_TRUE(Make()->Save(own.Path(), PictureOf("A"), Durability::Process));
    fs::permissions(own / JournalFileName, fs::perms(0400));
    fs::permissions(own.Path(), fs::perms(0500));
    EXPECT_EQ(Describe(journal->Load(own.Path())), Known(PictureOf("A")));
    EXPECT_FALSE(journal->Save(own.Path(), PictureOf("B"), Durability::Process));
    EXPECT_EQ(Describe(journal->Look(own.Path())), Known(PictureOf("A")));
    fs::permissions(own.Path(), fs::perms(0700));
}

TEST_F(TestSqliteJournal, AFullDiskLeavesTheOldPicture) {
    ASSERT_TRUE(Save(PictureOf("A")));
    ChildProcess limited([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        auto own = Make();
        ASSERT_TRUE(own->Save(data.Path(), PictureOf("B"), Durability::Medium));
        const rlimit full{64 * 1024, RLIM_INFINITY};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
        JournalPicture large;
        large.Entries.resize(5000);
        EXPECT_FALSE(own->Save(data.Path(), large, Durability::Medium));
        EXPECT_EQ(Describe(own->Load(data.Path())), Known(PictureOf("B")));
    });
    limited.Finish();
    EXPECT_EQ(Load(), Known(PictureOf("B")));
}

} // namespace
