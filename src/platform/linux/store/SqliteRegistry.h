#pragma once

#include "platform/Registry.h"
#include "platform/linux/store/AutostartFile.h"
#include "platform/linux/store/SqliteDatabase.h"

#include <filesystem>
#include <memory>

namespace korvalin {

class Clock;

/// The settings store in one SQLite file, shared with other instances; one thread uses it. The Run key is the
/// desktop's autostart entry of this program instead: values of other programs are not there and cannot be
/// set.
///
/// A damaged file is moved aside and a new one begun, at the start and whenever damage shows up. A file that
/// another instance has moved aside, or the user removed, is left for the one that now has its name. A store
/// that may only be read serves for reading; one that cannot be opened at all is kept in memory for this run.
class SqliteRegistry : public Registry {
  public:
    SqliteRegistry(std::filesystem::path file, AutostartFile autostart, Clock& clock);
    ~SqliteRegistry() override;

    int RegEnsureKey(std::string_view keyPath) override;
    std::vector<std::string> RegValueNames(std::string_view keyPath) override;
    bool RegFlush() override;

    /// Whether what is written outlives this run.
    bool IsKept() const;

    /// What befell the store since the last call, one line each, for the error log.
    std::vector<std::string> TakeNotes();

  protected:
    std::optional<std::string> ReadValue(std::string_view keyPath, std::string_view valueName) override;
    Written WriteValue(std::string_view keyPath, std::string_view valueName, std::string_view text) override;
    bool DeleteValue(std::string_view keyPath, std::string_view valueName) override;

  private:
    struct Store;
    enum class Purpose { Read, Write };
    struct Outcome {
        bool Succeeded = false;
        int Changes = 0;
        std::vector<std::string> Texts; ///< the first column of the rows found
    };

    void OpenAny();
    bool OpenFile();
    int OpenOrMoveAside(std::unique_ptr<Store>& store);
    bool MoveAside();
    void FollowFile(Purpose purpose);
    void ReplaceDamaged();
    void Note(std::string text);
    Outcome Run(Purpose purpose, SqliteDatabase::Statement Store::*statement,
                std::initializer_list<SqliteDatabase::Value> values);

    std::filesystem::path file_;
    AutostartFile autostart_;
    Clock& clock_;
    std::unique_ptr<Store> store_;
    // The open file has lost its name and no new one could be made: it can only be read.
    bool fileLost_ = false;
    std::vector<std::string> notes_;
    std::string lastNote_;
};

} // namespace korvalin
