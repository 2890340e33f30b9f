#pragma once

#include "platform/Registry.h"
#include "platform/linux/store/RegistryDatabase.h"
#include "platform/linux/store/RegistryFile.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace korvalin {

class Clock;

/// The settings store in one SQLite file, shared with other instances; one thread uses it.
///
/// A damaged file is moved aside and a new one begun, at the start and whenever damage shows up. A file that
/// another instance has moved aside, or the user removed, is left for the one that now has its name. A store
/// that may only be read serves for reading; one that cannot be opened at all is kept in memory for this run.
class SqliteRegistry : public Registry {
  public:
    SqliteRegistry(const std::filesystem::path& file, Clock& clock);

    int CreateKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access, RegistryKey& key,
                    RegistryDisposition& disposition) override;
    int OpenKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access,
                  RegistryKey& key) override;
    int QueryValueEx(RegistryKey key, std::string_view valueName, std::size_t bufferSize,
                     std::string& text) override;
    int SetValueEx(RegistryKey key, std::string_view valueName, std::string_view text) override;
    int DeleteValue(RegistryKey key, std::string_view valueName) override;
    int EnumValues(RegistryKey key, std::vector<std::string>& valueNames) override;
    void CloseKey(RegistryKey key) override;

    /// What befell the store since the last call, one line each, for the error log.
    std::vector<std::string> TakeNotes();

  private:
    struct OpenedKey {
        std::string Path, LowerPath;
    };
    enum class Purpose { Read, Write };

    void OpenAny();
    bool OpenFile();
    int OpenOrMoveAside(RegistryDatabase& database);
    void FollowFile(Purpose purpose);
    void ReplaceDamaged();
    void Use(std::unique_ptr<RegistryDatabase> database, RegistryDatabase::Source source);
    RegistryKey Hand(std::string_view keyPath, std::string lowerPath);
    void Note(std::string text);

    template <typename Operation>
    int Run(Purpose purpose, Operation&& operation);
    template <typename Operation>
    int RunOnKey(RegistryKey key, Purpose purpose, Operation&& operation);

    RegistryFile file_;
    Clock& clock_;
    std::unique_ptr<RegistryDatabase> database_;
    RegistryDatabase::Source source_ = RegistryDatabase::Source::Memory;
    std::optional<FileIdentity> identity_; // of the file that is open
    bool fileLost_ =
        false; // the open file has lost its name and no new one could be made: it can only be read
    std::unordered_map<RegistryKey, OpenedKey> opened_;
    std::unordered_set<std::string>
        knownKeys_; // lower-case paths found in the open store, where no key is ever deleted
    RegistryKey lastKey_ = 0;
    std::vector<std::string> notes_;
    std::string lastNote_;
};

} // namespace korvalin
