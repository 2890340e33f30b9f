#include "fakes/ChildProcess.h"
#include "fakes/FakeJournal.h"
#include "fakes/TemporaryFolder.h"
#include "platform/linux/store/SqliteJournal.h"

#include <fmt/format.h>

#include <limits>
#include <sys/stat.h>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;
using Durability = Journal::Durability;

/// All of it, each number bit for bit.
std::string Describe(const JournalFound& found) {
    std::string text = fmt::format("known {} same boot {}\n", found.KnowsMachine, found.SameBoot);
    for (const JournalEntry& e : found.Picture.Entries) {
        text += fmt::format("{} {} {} {} {}\n", e.Index, e.Adapter, e.Received, e.Transmitted, e.ReadAt);
        if (!e.Open) continue;
        const OpenConnection& o = *e.Open;
        text += fmt::format("  {} {} {} {} {} {} {} {} {}\n", o.LineName, o.LogIn, o.End, o.BytesReceived,
                            o.BytesTransmitted, o.User, o.IpAddress, o.IsRas, o.Recorded);
    }
    for (const PendingRecord& record : found.Picture.Pending)
        text += fmt::format("pending {} {}\n", record.StatLine, record.ExportLine);
    for (const auto& [line, end] : found.Picture.LastEnds)
        text += fmt::format("{} ended {}\n", line, end);
    return text;
}

JournalPicture PictureOf(const std::string& line) {
    const OpenConnection open{line, 45000, 45000.1, 10, 20, "", ""};
    return {{{7, "eth0", 100, 200, 45000.1, open}, {3, "wlan0", 300, 400, 45000.1, {}}}, {}, {}};
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
    /// What a writer leaves that ends with an open connection.
    void LeaveNotes() const {
        const auto own = Make();
        ASSERT_TRUE(own->Save(data.Path(), PictureOf("A"), Durability::Process));
        own->Note({NoteOf()});
    }
    static fs::path OnlyFileIn(const TemporaryFolder& folder) {
        EXPECT_EQ(folder.Entries().size(), 1U);
        return *folder.Entries().begin();
    }
    /// All files, with the content of those that hold something.
    std::string Everything() const {
        std::string all;
        for (const TemporaryFolder* folder : {&data, &runtime})
            for (const fs::path& path : folder->Entries())
                all += path.string() + (path.string().ends_with("-shm") ? "" : folder->Read(path));
        return all;
    }

    TemporaryFolder data, another, runtime;
    fs::path file = data / JournalFileName;
    std::unique_ptr<SqliteJournal> journal = Make();
};

// What every journal must do.
TEST_F(TestSqliteJournal, AndItsFakeGiveBackWhatWasLastSavedAndNoted) {
    FakeJournal fake;
    for (Journal* tested : {static_cast<Journal*>(&fake), static_cast<Journal*>(journal.get())}) {
        const auto expectFound = [&](const JournalFound& expected) {
            EXPECT_EQ(Describe(tested->Load(data.Path())), Describe(expected));
            EXPECT_EQ(Describe(tested->Look(data.Path())), Describe(expected));
        };
        expectFound({});
        for (const JournalPicture& picture : {JournalPicture(), OddPicture(), PictureOf("A")}) {
            for (const Durability durability : {Durability::Medium, Durability::Process}) {
                EXPECT_TRUE(tested->Save(data.Path(), picture, durability));
                expectFound({true, true, picture});
            }
        }
        for (const std::uint64_t more : {1, 1000})
            tested->Note({NoteOf(more), {3, 1, 1, 1, 1, 1, 1}, {99, 1, 1, 1, 1, 1, 1}});
        expectFound({true, true, Noted(PictureOf("A"))});
        ASSERT_TRUE(tested->Save(data.Path(), PictureOf("B"), Durability::Process));
        expectFound({true, true, PictureOf("B")});
        tested->Note({NoteOf()});
        expectFound({true, true, Noted(PictureOf("B"))});
    }
}

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
    EXPECT_TRUE(data.Entries().empty());
    ASSERT_TRUE(Make()->Save(data.Path(), {}, Durability::Process));
    Signal written, goOn;
    ChildProcess writer([&] {
        for (const char* line : {"A", "B"}) {
            EXPECT_TRUE(Save(PictureOf(line)));
            journal->Note({NoteOf()});
            written.Send();
            goOn.Await();
        }
    });
    const auto expectLook = [&](const char* line) {
        const std::string before = Everything();
        EXPECT_EQ(Look(), Known(Noted(PictureOf(line))));
        EXPECT_EQ(Everything(), before) << line;
    };
    written.Await();
    expectLook("A");
    goOn.Send();
    written.Await();
    expectLook("B");
    writer.Kill();
    expectLook("B");
    EXPECT_EQ(Load(), Known(Noted(PictureOf("B")))) << "closes the file as a writer does at its end";
    EXPECT_EQ(data.Entries(), std::set{file});
    expectLook("B");
}

TEST_F(TestSqliteJournal, NotesThatAreNotWholeOrAnotherJournalsAreLeftOut) {
    const TemporaryFolder elsewhere;
    SqliteJournal foreign("machine", "boot", elsewhere.Path());
    ASSERT_TRUE(foreign.Save(another.Path(), PictureOf("A"), Durability::Process));
    foreign.Note({NoteOf()});
    const std::string foreignNotes = data.Read(OnlyFileIn(elsewhere));
    fs::path notes;
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"another journal's", [&] { data.Write(notes, foreignNotes); }},
        {"empty", [&] { fs::resize_file(notes, 0); }},
        {"cut in a note", [&] { fs::resize_file(notes, fs::file_size(notes) - 1); }},
        {"torn", [&] { data.Overwrite(notes, 60, "        "); }},
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
    EXPECT_TRUE(runtime.Entries().empty()) << "the earlier run's";
    journal->Note({NoteOf(1)});
    const fs::path notes = OnlyFileIn(runtime);
    data.Write(notes, "touched");
    journal->Note({NoteOf(1)});
    EXPECT_EQ(data.Read(notes), "touched") << "the same again";
    for (int time = 1; time <= 2; ++time) {
        journal->Note({NoteOf()});
        EXPECT_EQ(Load(), Known(Noted(PictureOf("A"))));
        fs::remove(notes); // is made anew
    }
    ASSERT_TRUE(Save({}));
    EXPECT_TRUE(runtime.Entries().empty());
}

TEST_F(TestSqliteJournal, FilesAreTheUsersAloneAlsoWithoutAFolderForNotes) {
    for (const fs::path& folder : {fs::path(), runtime / "none", runtime.Path()}) {
        SqliteJournal own("machine", "boot", folder);
        ASSERT_TRUE(own.Save(data.Path(), PictureOf("A"), Durability::Process));
        own.Note({NoteOf()});
        EXPECT_EQ(Describe(own.Load(data.Path())), Known(Noted(PictureOf("A"))));
        std::set<fs::path> files = data.Entries();
        files.merge(runtime.Entries());
        EXPECT_EQ(files.size(), 4U) << "the database, its log and index, the notes";
        for (const fs::path& path : files)
            EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600)) << path;
        fs::permissions(file, fs::perms(0644));
    }
}

TEST_F(TestSqliteJournal, WhatIsNoJournalIsMovedAsideAndANewOneBegun) {
    const fs::path target = another.Write("target", "not to be touched");
    const auto instead = [&](const std::function<void()>& make) {
        return [this, make] {
            fs::remove(file);
            make();
        };
    };
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"cut in the middle", [&] { fs::resize_file(file, fs::file_size(file) / 2); }},
        {"another program's", [&] { data.Overwrite(file, 68, "GPKG"); }},
        {"a folder", instead([&] { fs::create_directories(file / "folder"); })},
        {"a link", instead([&] { fs::create_symlink(target, file); })},
        {"a pipe", instead([&] { ASSERT_EQ(mkfifo(file.c_str(), 0600), 0); })}};
    for (const auto& [what, damage] : rows) {
        SCOPED_TRACE(what);
        ASSERT_TRUE(Save(PictureOf("A")));
        journal = Make();
        damage();
        const fs::file_status before = fs::symlink_status(file);
        EXPECT_EQ(Look(), Unknown());
        EXPECT_EQ(data.Entries(), std::set{file});
        EXPECT_EQ(Load(), Unknown());
        EXPECT_EQ(fs::symlink_status(file.string() + "_1").type(), before.type());
        ASSERT_TRUE(Save(PictureOf("B")));
        EXPECT_EQ(Load(), Known(PictureOf("B")));
        journal = Make();
        for (const fs::path& path : data.Entries())
            fs::remove_all(path);
    }
    fs::create_symlink(target, file.string() + "-wal");
    EXPECT_TRUE(Save(PictureOf("B")));
    data.Write(file.string() + "_1", "here already");
    ASSERT_TRUE(Make("other")->Save(data.Path(), {}, Durability::Process)) << "what is in memory is outdated";
    for (const fs::path& path : {file, fs::path(file.string() + "-wal")})
        data.Overwrite(path, 32, std::string(fs::file_size(path) - 32, 'x'));
    EXPECT_TRUE(Save(PictureOf("C"))) << "damage that shows while it is open";
    EXPECT_EQ(Load(), Known(PictureOf("C")));
    EXPECT_TRUE(fs::exists(file.string() + "_2"));
    EXPECT_EQ(data.Read(target), "not to be touched");
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
        EXPECT_EQ(data.Entries().empty(), !shared);
        EXPECT_TRUE(runtime.Entries().empty());
        EXPECT_EQ(Describe(Make()->Load(another.Path())), Known(PictureOf("B")));
        ASSERT_TRUE(Save(PictureOf("A"))) << "and back";
        EXPECT_TRUE(another.Entries().empty());
    }
    fs::create_directory_symlink(data.Path(), another / "link");
    ASSERT_TRUE(journal->Save(another / "link", PictureOf("B"), Durability::Process));
    EXPECT_EQ(Load(), Known(PictureOf("B"))) << "the same folder";
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
    JournalPicture large;
    large.Entries.resize(5000);
    WithFileLimit(64 * 1024, [&] {
        auto own = Make();
        ASSERT_TRUE(own->Save(data.Path(), PictureOf("B"), Durability::Medium));
        EXPECT_FALSE(own->Save(data.Path(), large, Durability::Medium));
        EXPECT_EQ(Describe(own->Load(data.Path())), Known(PictureOf("B")));
    });
    EXPECT_EQ(Load(), Known(PictureOf("B")));
}

} // namespace
