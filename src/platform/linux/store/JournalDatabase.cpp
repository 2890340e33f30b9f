#include "platform/linux/store/JournalDatabase.h"

#include <sqlite3.h>

#include <bit>

namespace korvalin {
namespace {

using Row = SqliteDatabase::Row;
using Access = SqliteDatabase::Access;

// Updates wait for a Save, so another program's write is waited for only shortly.
constexpr int busyMilliseconds = 500;

// In the file's header ("KrvJ"): tells a journal from any other database.
constexpr std::int64_t applicationId = 0x4B72764A;

// The log goes back into the database at a megabyte, once in many Saves: that takes further flushes.
constexpr const char* fileSettings = "PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 256";

// Columns of dates and bytes have no type: SQLite would keep a whole number as an integer there, which knows
// no -0, and they may be NULL, which is what it makes of NaN. Counters are kept by their bits, as SQLite's
// integers have a sign.
constexpr const char* tables = R"(
    CREATE TABLE Machines (Machine TEXT NOT NULL PRIMARY KEY, Boot TEXT NOT NULL, Id INTEGER NOT NULL,
                           Generation INTEGER NOT NULL) WITHOUT ROWID;
    CREATE TABLE Entries (Machine TEXT NOT NULL, Position INTEGER NOT NULL, KernelIndex INTEGER NOT NULL,
                          Adapter TEXT NOT NULL, Received INTEGER NOT NULL, Transmitted INTEGER NOT NULL, ReadAt,
                          IsOpen INTEGER NOT NULL, LineName TEXT NOT NULL, LogIn, OpenEnd, OpenReceived,
                          OpenTransmitted, User TEXT NOT NULL, IpAddress TEXT NOT NULL, IsRas INTEGER NOT NULL,
                          Recorded INTEGER NOT NULL, PRIMARY KEY (Machine, Position)) WITHOUT ROWID;
    CREATE TABLE Pending (Machine TEXT NOT NULL, Position INTEGER NOT NULL, StatLine TEXT NOT NULL,
                          ExportLine TEXT NOT NULL, PRIMARY KEY (Machine, Position)) WITHOUT ROWID;
    CREATE TABLE LastEnds (Machine TEXT NOT NULL, LineName TEXT NOT NULL, LastEnd,
                           PRIMARY KEY (Machine, LineName)) WITHOUT ROWID)";

std::int64_t Bits(std::uint64_t number) {
    return std::bit_cast<std::int64_t>(number);
}

std::uint64_t Counter(const Row& row, int column) {
    return std::bit_cast<std::uint64_t>(row.Integer(column));
}

OpenConnection ReadOpenConnection(const Row& row) {
    OpenConnection open;
    open.LineName = row.Text(6);
    open.LogIn = row.Real(7);
    open.End = row.Real(8);
    open.BytesReceived = row.Real(9);
    open.BytesTransmitted = row.Real(10);
    open.User = row.Text(11);
    open.IpAddress = row.Text(12);
    open.IsRas = row.Integer(13) != 0;
    open.Recorded = row.Integer(14) != 0;
    return open;
}

JournalEntry ReadEntry(const Row& row) {
    JournalEntry entry;
    entry.Index = static_cast<std::uint32_t>(row.Integer(0));
    entry.Adapter = row.Text(1);
    entry.Received = Counter(row, 2);
    entry.Transmitted = Counter(row, 3);
    entry.ReadAt = row.Real(4);
    if (row.Integer(5) != 0) entry.Open = ReadOpenConnection(row);
    return entry;
}

} // namespace

int JournalDatabase::Connect(const std::filesystem::path& file, Source source) {
    switch (source) {
    case Source::SharedFile: return database_.OpenFile(file, SQLITE_OPEN_READONLY, busyMilliseconds);
    case Source::ClosedFile:
        // immutable: SQLite would make its other files, and leave them behind
        return database_.OpenFile(file, SQLITE_OPEN_READONLY, busyMilliseconds, "immutable=1");
    case Source::File: break;
    }
    const int code = database_.OpenFile(file, SQLITE_OPEN_READWRITE, busyMilliseconds);
    return code == SQLITE_OK ? database_.Execute(fileSettings) : code;
}

int JournalDatabase::Prepare() {
    return database_.Prepare(
        {{"INSERT INTO Machines VALUES (?1, ?2, ?3, 1) ON CONFLICT (Machine) DO UPDATE SET "
          "Boot = excluded.Boot, Id = excluded.Id, Generation = Generation + 1 RETURNING Generation",
          putMachine_},
         {"DELETE FROM Machines WHERE Machine = ?1", removeMachine_},
         {"SELECT Boot, Id, Generation FROM Machines WHERE Machine = ?1", findMachine_},
         {"SELECT count(*) FROM Machines", countMachines_},
         {"INSERT INTO Entries VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, "
          "?16, "
          "?17)",
          addEntry_},
         {"DELETE FROM Entries WHERE Machine = ?1", removeEntries_},
         {"SELECT KernelIndex, Adapter, Received, Transmitted, ReadAt, IsOpen, LineName, LogIn, OpenEnd, "
          "OpenReceived, OpenTransmitted, User, IpAddress, IsRas, Recorded FROM Entries WHERE Machine = ?1 "
          "ORDER BY Position",
          listEntries_},
         {"INSERT INTO Pending VALUES (?1, ?2, ?3, ?4)", addPending_},
         {"DELETE FROM Pending WHERE Machine = ?1", removePending_},
         {"SELECT StatLine, ExportLine FROM Pending WHERE Machine = ?1 ORDER BY Position", listPending_},
         {"INSERT INTO LastEnds VALUES (?1, ?2, ?3)", addLastEnd_},
         {"DELETE FROM LastEnds WHERE Machine = ?1", removeLastEnds_},
         {"SELECT LineName, LastEnd FROM LastEnds WHERE Machine = ?1", listLastEnds_}});
}

int JournalDatabase::Open(const std::filesystem::path& file, Source source) {
    int code = Connect(file, source);
    const Access access = source == Source::File ? Access::Write : Access::Read;
    if (code == SQLITE_OK) code = database_.EnsureTables(applicationId, tables, access);
    if (code == SQLITE_OK) code = database_.CheckStructure();
    if (code == SQLITE_OK) code = Prepare();
    return code;
}

int JournalDatabase::ReadStamp(std::string_view machine, JournalStamp& stamp) {
    stamp = {};
    return SqliteDatabase::Run(findMachine_, {machine}, [&stamp](const Row& row) {
        stamp = {std::string(row.Text(0)), Counter(row, 1), Counter(row, 2)};
    });
}

int JournalDatabase::Read(std::string_view machine, JournalPicture& picture, JournalStamp& stamp) {
    picture = {};
    const auto takeEntry = [&](const Row& row) { picture.Entries.push_back(ReadEntry(row)); };
    const auto takePending = [&](const Row& row) {
        picture.Pending.push_back({std::string(row.Text(0)), std::string(row.Text(1))});
    };
    const auto takeLastEnd = [&](const Row& row) { picture.LastEnds.emplace(row.Text(0), row.Real(1)); };
    return database_.InTransaction(Access::Read, [&] {
        int code = ReadStamp(machine, stamp);
        if (code == SQLITE_OK) code = SqliteDatabase::Run(listEntries_, {machine}, takeEntry);
        if (code == SQLITE_OK) code = SqliteDatabase::Run(listPending_, {machine}, takePending);
        if (code == SQLITE_OK) code = SqliteDatabase::Run(listLastEnds_, {machine}, takeLastEnd);
        return code;
    });
}

int JournalDatabase::AddEntry(std::string_view machine, std::int64_t position, const JournalEntry& entry) {
    const OpenConnection open = entry.Open.value_or(OpenConnection());
    return SqliteDatabase::Run(
        addEntry_, {machine, position, std::int64_t{entry.Index}, entry.Adapter, Bits(entry.Received),
                    Bits(entry.Transmitted), entry.ReadAt, std::int64_t{entry.Open.has_value()},
                    open.LineName, open.LogIn, open.End, open.BytesReceived, open.BytesTransmitted, open.User,
                    open.IpAddress, std::int64_t{open.IsRas}, std::int64_t{open.Recorded}});
}

int JournalDatabase::AddRows(std::string_view machine, const JournalPicture& picture) {
    int code = SQLITE_OK;
    std::int64_t position = 0;
    for (const JournalEntry& entry : picture.Entries) {
        if (code == SQLITE_OK) code = AddEntry(machine, position++, entry);
    }
    for (const PendingRecord& record : picture.Pending) {
        if (code != SQLITE_OK) break;
        code = SqliteDatabase::Run(addPending_, {machine, position++, record.StatLine, record.ExportLine});
    }
    for (const auto& [lineName, lastEnd] : picture.LastEnds) {
        if (code == SQLITE_OK) code = SqliteDatabase::Run(addLastEnd_, {machine, lineName, lastEnd});
    }
    return code;
}

int JournalDatabase::RemoveRows(std::string_view machine) {
    int code = SQLITE_OK;
    for (const auto* statement : {&removeEntries_, &removePending_, &removeLastEnds_}) {
        if (code == SQLITE_OK) code = SqliteDatabase::Run(*statement, {machine});
    }
    return code;
}

int JournalDatabase::Replace(std::string_view machine, const JournalPicture& picture, JournalStamp& stamp,
                             Journal::Durability durability) {
    const bool flush = durability == Journal::Durability::Medium;
    int code = database_.Execute(flush ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
    if (code != SQLITE_OK) return code;
    std::uint64_t generation = 0;
    const auto takeGeneration = [&](const Row& row) { generation = Counter(row, 0); };
    code = database_.InTransaction(Access::Write, [&] {
        int step = SqliteDatabase::Run(putMachine_, {machine, stamp.Boot, Bits(stamp.Id)}, takeGeneration);
        if (step == SQLITE_OK) step = RemoveRows(machine);
        if (step == SQLITE_OK) step = AddRows(machine, picture);
        return step;
    });
    if (code == SQLITE_OK) stamp.Generation = generation;
    return code;
}

int JournalDatabase::Forget(std::string_view machine, bool& othersAreLeft) {
    return database_.InTransaction(Access::Write, [&] {
        int code = RemoveRows(machine);
        if (code == SQLITE_OK) code = SqliteDatabase::Run(removeMachine_, {machine});
        const auto takeCount = [&](const Row& row) { othersAreLeft = row.Integer(0) > 0; };
        if (code == SQLITE_OK) code = SqliteDatabase::Run(countMachines_, {}, takeCount);
        return code;
    });
}

} // namespace korvalin
