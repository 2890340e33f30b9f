#include "platform/linux/store/SqliteRegistry.h"

#include "base/Text.h"
#include "platform/Clock.h"

#include <sqlite3.h>

#include <cstring>
#include <exception>
#include <utility>

namespace korvalin {
namespace {

using Source = RegistryDatabase::Source;

// What cannot be read is not there, for a reader; the defaults serve.
int ReadCode(int code) {
    switch (code) {
    case SQLITE_OK: return ErrorSuccess;
    case SQLITE_TOOBIG: return ErrorMoreData;
    default: return ErrorFileNotFound;
    }
}

int WriteCode(int code) {
    switch (code) {
    case SQLITE_OK: return ErrorSuccess;
    case SQLITE_NOTFOUND: return ErrorFileNotFound;
    case SQLITE_READONLY:
    case SQLITE_PERM: return ErrorAccessDenied;
    default: return ErrorWriteFault;
    }
}

} // namespace

SqliteRegistry::SqliteRegistry(const std::filesystem::path& file, Clock& clock) : file_(file), clock_(clock) {
    try {
        OpenAny();
    } catch (const std::exception& error) {
        Note(std::string("The settings store could not be opened: ") + error.what());
    }
}

void SqliteRegistry::OpenAny() {
    if (OpenFile()) return;
    auto database = std::make_unique<RegistryDatabase>();
    if (database->Open(file_.Path(), Source::ReadOnlyFile) == SQLITE_OK) {
        Note("The settings store can only be read");
        return Use(std::move(database), Source::ReadOnlyFile);
    }
    database = std::make_unique<RegistryDatabase>();
    if (database->Open({}, Source::Memory) != SQLITE_OK) return;
    Note("Settings are kept in memory for this run");
    Use(std::move(database), Source::Memory);
}

// Opens the file of the store's name, a new one if need be. False leaves the present database in use.
bool SqliteRegistry::OpenFile() {
    int error = file_.Prepare();
    const Descriptor lock = file_.LockFolder();
    if (error == 0) error = file_.Prepare(); // the file may have been moved aside before the lock was given
    if (error != 0) {
        Note("The settings store " + file_.Path().string() + " could not be made: " + std::strerror(error));
        return false;
    }
    auto database = std::make_unique<RegistryDatabase>();
    const int code = OpenOrMoveAside(*database);
    if (code != SQLITE_OK) {
        Note("The settings store " + file_.Path().string() + " could not be opened: " + sqlite3_errstr(code));
        return false;
    }
    Use(std::move(database), Source::File);
    return true;
}

int SqliteRegistry::OpenOrMoveAside(RegistryDatabase& database) {
    const int code = database.Open(file_.Path(), Source::File);
    if (!SqliteDatabase::IsDamage(code)) return code;
    // Moved before it is closed: closing would write its log into it.
    const std::optional<std::filesystem::path> aside = file_.MoveAside(clock_.Now());
    if (!aside) return code;
    Note("The settings store was damaged and moved aside: " + aside->string());
    if (file_.Prepare() != 0) return SQLITE_CANTOPEN;
    database = RegistryDatabase();
    return database.Open(file_.Path(), Source::File);
}

void SqliteRegistry::Use(std::unique_ptr<RegistryDatabase> database, Source source) {
    database_ = std::move(database);
    source_ = source;
    fileLost_ = false;
    knownKeys_.clear();
    identity_ = source == Source::File ? file_.CurrentIdentity() : std::nullopt;
    // Handles stay good: a key that was open in the old store exists in the new one.
    if (source == Source::ReadOnlyFile) return;
    for (const auto& [handle, key] : opened_) {
        if (database_->FindKey(key.LowerPath) == SQLITE_NOTFOUND) {
            static_cast<void>(database_->AddKey(key.LowerPath, key.Path));
        }
    }
}

// SQLite goes on with a file that was renamed or removed; this one is then nobody else's any more.
void SqliteRegistry::FollowFile(Purpose purpose) {
    if (source_ == Source::File) {
        const auto present = file_.CurrentIdentity();
        fileLost_ = !(present && present == identity_) && !OpenFile();
    } else if (source_ == Source::ReadOnlyFile && purpose == Purpose::Write) {
        OpenFile(); // the disk may have room again
    }
}

void SqliteRegistry::ReplaceDamaged() {
    if (source_ != Source::File) return;
    {
        const Descriptor lock = file_.LockFolder();
        if (file_.CurrentIdentity() == identity_) {
            const std::optional<std::filesystem::path> aside = file_.MoveAside(clock_.Now());
            if (!aside) return;
            Note("The settings store was damaged and moved aside: " + aside->string());
        } // else another instance has moved it already
    }
    OpenFile();
}

// Runs one operation. Damage that comes to light is moved aside, and the operation runs once more on the new
// store.
template <typename Operation>
int SqliteRegistry::Run(Purpose purpose, Operation&& operation) {
    try {
        FollowFile(purpose);
        if (!database_) return SQLITE_NOMEM;
        if (fileLost_ && purpose == Purpose::Write) return SQLITE_IOERR;
        const int code = operation(*database_);
        if (!SqliteDatabase::IsDamage(code)) return code;
        ReplaceDamaged();
        return operation(*database_);
    } catch (const std::exception&) {
        return SQLITE_NOMEM;
    }
}

template <typename Operation>
int SqliteRegistry::RunOnKey(RegistryKey key, Purpose purpose, Operation&& operation) {
    const auto found = opened_.find(key);
    if (found == opened_.end()) return ErrorInvalidHandle;
    const std::string_view lowerPath = found->second.LowerPath;
    const int code = Run(purpose, [&](RegistryDatabase& database) { return operation(database, lowerPath); });
    return purpose == Purpose::Read ? ReadCode(code) : WriteCode(code);
}

RegistryKey SqliteRegistry::Hand(std::string_view keyPath, std::string lowerPath) {
    opened_.emplace(++lastKey_, OpenedKey{std::string(keyPath), std::move(lowerPath)});
    return lastKey_;
}

int SqliteRegistry::CreateKeyEx(RegistryHive, std::string_view keyPath, RegistryAccess, RegistryKey& key,
                                RegistryDisposition& disposition) {
    const int code = Run(Purpose::Write, [&](RegistryDatabase& database) {
        std::string lowerPath = ToLower(keyPath);
        int result = database.FindKey(lowerPath);
        disposition = RegistryDisposition::OpenedExistingKey;
        if (result == SQLITE_NOTFOUND) {
            disposition = RegistryDisposition::CreatedNewKey;
            result = database.AddKey(lowerPath, keyPath);
        }
        if (result == SQLITE_OK) key = Hand(keyPath, std::move(lowerPath));
        return result;
    });
    if (code != SQLITE_OK) disposition = RegistryDisposition::None;
    return WriteCode(code);
}

int SqliteRegistry::OpenKeyEx(RegistryHive, std::string_view keyPath, RegistryAccess, RegistryKey& key) {
    return ReadCode(Run(Purpose::Read, [&](RegistryDatabase& database) {
        std::string lowerPath = ToLower(keyPath);
        const int result = knownKeys_.contains(lowerPath) ? SQLITE_OK : database.FindKey(lowerPath);
        if (result != SQLITE_OK) return result;
        knownKeys_.insert(lowerPath);
        key = Hand(keyPath, std::move(lowerPath));
        return result;
    }));
}

int SqliteRegistry::QueryValueEx(RegistryKey key, std::string_view valueName, std::size_t bufferSize,
                                 std::string& text) {
    if (bufferSize == 0) return ErrorMoreData; // no room for the terminating zero
    return RunOnKey(key, Purpose::Read, [&](RegistryDatabase& database, std::string_view lowerPath) {
        return database.FindValue(lowerPath, ToLower(valueName), bufferSize - 1, text);
    });
}

int SqliteRegistry::SetValueEx(RegistryKey key, std::string_view valueName, std::string_view text) {
    return RunOnKey(key, Purpose::Write, [&](RegistryDatabase& database, std::string_view lowerPath) {
        return database.PutValue(lowerPath, ToLower(valueName), valueName, text);
    });
}

int SqliteRegistry::DeleteValue(RegistryKey key, std::string_view valueName) {
    return RunOnKey(key, Purpose::Write, [&](RegistryDatabase& database, std::string_view lowerPath) {
        return database.RemoveValue(lowerPath, ToLower(valueName));
    });
}

int SqliteRegistry::EnumValues(RegistryKey key, std::vector<std::string>& valueNames) {
    return RunOnKey(key, Purpose::Read, [&](RegistryDatabase& database, std::string_view lowerPath) {
        return database.ListValues(lowerPath, valueNames);
    });
}

void SqliteRegistry::CloseKey(RegistryKey key) {
    opened_.erase(key);
}

// The same failure again and again, at every call, is told once.
void SqliteRegistry::Note(std::string text) {
    if (text == lastNote_) return;
    lastNote_ = text;
    notes_.push_back(std::move(text));
}

std::vector<std::string> SqliteRegistry::TakeNotes() {
    return std::exchange(notes_, {});
}

} // namespace korvalin
