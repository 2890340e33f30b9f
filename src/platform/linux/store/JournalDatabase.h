#pragma once

#include "platform/Journal.h"
#include "platform/linux/store/JournalStamp.h"
#include "platform/linux/store/SqliteDatabase.h"

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace korvalin {

/// The pictures of all machines in one SQLite database. Calls return SQLite's primary result codes.
class JournalDatabase {
  public:
    enum class Source {
        File,       ///< to be written
        SharedFile, ///< to be looked at beside its writer, or with what a killed one left
        ClosedFile  ///< to be looked at while nobody has it open
    };

    /// Opens a database that is there, makes its tables when it is empty and checks its structure.
    /// SqliteDatabase::IsDamage tells of a result that it is no sound journal.
    [[nodiscard]] int Open(const std::filesystem::path& file, Source source);

    [[nodiscard]] int ReadStamp(std::string_view machine, JournalStamp& stamp);

    /// The machine's picture and its stamp; both stay empty for a machine that is not known.
    [[nodiscard]] int Read(std::string_view machine, JournalPicture& picture, JournalStamp& stamp);

    /// Replaces the machine's picture in one step and gives the stamp its generation.
    [[nodiscard]] int Replace(std::string_view machine, const JournalPicture& picture, JournalStamp& stamp,
                              Journal::Durability durability);

    /// Removes all that the machine has written, and tells whether there are other machines.
    [[nodiscard]] int Forget(std::string_view machine, bool& othersAreLeft);

  private:
    int Connect(const std::filesystem::path& file, Source source);
    int Prepare();
    int RemoveRows(std::string_view machine);
    int AddEntry(std::string_view machine, std::int64_t position, const JournalEntry& entry);
    int AddRows(std::string_view machine, const JournalPicture& picture);

    // The connection comes first, so that it is closed after its statements.
    SqliteDatabase database_;
    SqliteDatabase::Statement putMachine_, removeMachine_, findMachine_, countMachines_, addEntry_,
        removeEntries_, listEntries_, addPending_, removePending_, listPending_, addLastEnd_, removeLastEnds_,
        listLastEnds_;
};

} // namespace korvalin
