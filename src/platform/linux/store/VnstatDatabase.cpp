#include "platform/linux/store/VnstatDatabase.h"

#include "platform/linux/store/SqliteDatabase.h"

#include <sqlite3.h>

namespace korvalin {
namespace {

using Fault = DayCounts::Fault;
namespace fs = std::filesystem;

constexpr std::int64_t knownVersion = 1; // of the tables, through all of vnStat 2

constexpr const char* selectVersion = "SELECT value FROM info WHERE name = 'dbversion'";
constexpr const char* selectDays =
    "SELECT interface.name, day.date, day.rx, day.tx FROM day "
    "JOIN interface ON interface.id = day.interface ORDER BY interface.name, day.date";

Fault FaultOf(int code) {
    switch (code) {
    case SQLITE_OK: return Fault::None;
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return Fault::Locked;
    case SQLITE_NOTADB: return Fault::Foreign;
    case SQLITE_CORRUPT: return Fault::Damaged;
    default: return Fault::Unreadable;
    }
}

// A pipe in the file's place would be waited for.
Fault LookAt(const fs::path& file, fs::path& real) {
    std::error_code error;
    real = fs::canonical(file, error);
    if (error == std::errc::no_such_file_or_directory) return Fault::NoFile;
    if (error) return Fault::Unreadable;
    return fs::is_regular_file(real, error) ? Fault::None : Fault::Foreign;
}

// "2024-03-15" and no less: a time alone would be a day of 1899.
bool IsDay(Date date) {
    return date >= DateSerial(1970, 1, 1) && date == DayOf(date);
}

// The structure was found to be whole, so a table that is missing belongs to another program's database.
Fault CheckVersion(SqliteDatabase& database) {
    SqliteDatabase::Statement version;
    if (database.Prepare({{selectVersion, version}}) != SQLITE_OK) return Fault::Foreign;
    std::int64_t found = 0;
    const int code =
        SqliteDatabase::Run(version, {}, [&](const SqliteDatabase::Row& row) { found = row.Integer(0); });
    if (code != SQLITE_OK) return FaultOf(code);
    if (found == 0) return Fault::Foreign;
    return found > knownVersion ? Fault::Newer : Fault::None;
}

Fault ReadDays(SqliteDatabase& database, std::vector<CountedDay>& days) {
    SqliteDatabase::Statement statement;
    if (database.Prepare({{selectDays, statement}}) != SQLITE_OK) return Fault::Foreign;
    bool sound = true;
    const int code = SqliteDatabase::Run(statement, {}, [&](const SqliteDatabase::Row& row) {
        const Date day = ParseDateIso(row.Text(1)).value_or(0);
        CountedDay counted{std::string(row.Text(0)), day, static_cast<double>(row.Integer(2)),
                           static_cast<double>(row.Integer(3))};
        sound = sound && IsDay(day) && !counted.Adapter.empty() && counted.BytesReceived >= 0 &&
                counted.BytesTransmitted >= 0;
        days.push_back(std::move(counted));
    });
    return code == SQLITE_OK && !sound ? Fault::Damaged : FaultOf(code);
}

Fault ReadAll(const fs::path& file, int busyMilliseconds, std::vector<CountedDay>& days) {
    fs::path real;
    if (const Fault fault = LookAt(file, real); fault != Fault::None) return fault;
    SqliteDatabase database;
    if (const int code = database.OpenFile(real, SQLITE_OPEN_READONLY, busyMilliseconds); code != SQLITE_OK)
        return FaultOf(code);
    Fault fault = Fault::None;
    const int code = database.InTransaction(SqliteDatabase::Access::Read, [&] {
        const int structure = database.CheckStructure();
        if (structure != SQLITE_OK) return structure;
        fault = CheckVersion(database);
        if (fault == Fault::None) fault = ReadDays(database, days);
        return SQLITE_OK;
    });
    return code == SQLITE_OK ? fault : FaultOf(code);
}

} // namespace

DayCounts::Reading VnstatDatabase::Read(const fs::path& file) {
    Reading reading;
    reading.Fault = ReadAll(file, busyMilliseconds_, reading.Days);
    if (reading.Fault != Fault::None) reading.Days.clear();
    return reading;
}

} // namespace korvalin
