#pragma once

#include "platform/Journal.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace korvalin {

class JournalDatabase;

/// The journal in one SQLite file of all machines, and the notes in a small file of their own, which is
/// written without a flush.
///
/// The file is opened when it is first needed and stays open. Each writer that opens it draws an Id for its
/// stamps: notes of an earlier one, or of a copy of the folder, never belong to its Saves. What stands in the
/// file's place and is no file, or no sound journal, is moved aside; links are not followed.
class SqliteJournal : public Journal {
  public:
    /// The texts tell this machine, and the boot of its system, from all others. The folder for the notes is
    /// one that lasts as long as the boot; where it does not take them they lie beside the journal.
    SqliteJournal(std::string machine, std::string boot, std::filesystem::path notesFolder);
    ~SqliteJournal() override;
    SqliteJournal(const SqliteJournal&) = delete;
    SqliteJournal& operator=(const SqliteJournal&) = delete;

    JournalFound Load(const std::filesystem::path& folder) override;
    bool Save(const std::filesystem::path& folder, const JournalPicture& picture,
              Durability durability) override;
    void Note(const std::vector<JournalNote>& notes) override;
    JournalFound Look(const std::filesystem::path& folder) override;

  private:
    struct OpenJournal;

    std::vector<std::filesystem::path> NotesFolders(const std::filesystem::path& file) const;
    std::unique_ptr<OpenJournal> Open(const std::filesystem::path& file) const;
    int Write(OpenJournal& journal, const JournalPicture& picture, Durability durability) const;
    void DropLost();
    bool Leave(OpenJournal& journal, const OpenJournal& next) const;
    JournalFound Read(JournalDatabase& database, const std::filesystem::path& file) const;

    std::string machine_, boot_;
    std::filesystem::path notesFolder_;
    std::unique_ptr<OpenJournal> open_;
    std::unique_ptr<OpenJournal> left_; // one that could not be left yet: a start must not find it
};

} // namespace korvalin
