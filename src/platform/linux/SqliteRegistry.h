#pragma once

#include "platform/Registry.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace korvalin {

/// The settings store: one SQLite file with write-ahead log, readable by its user only. Every write is one transaction,
/// so a kill at any moment loses nothing that was written. A damaged file is moved aside and an empty one begun; where
/// no file can be used at all, the settings live in memory for this run.
class SqliteRegistry : public Registry {
  public:
    /// Receives a sentence about what happened to the file and the file's new place.
    using Note = std::function<void(const std::string& text)>;

    SqliteRegistry(std::filesystem::path file, Note note);
    ~SqliteRegistry() override;
    SqliteRegistry(const SqliteRegistry&) = delete;
    SqliteRegistry& operator=(const SqliteRegistry&) = delete;

    int CreateKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access, RegistryKey& key,
                    RegistryDisposition& disposition) override;
    int OpenKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access, RegistryKey& key) override;
    int QueryValueEx(RegistryKey key, std::string_view valueName, std::size_t bufferSize, std::string& text) override;
    int SetValueEx(RegistryKey key, std::string_view valueName, std::string_view text) override;
    int DeleteValue(RegistryKey key, std::string_view valueName) override;
    int EnumValues(RegistryKey key, std::vector<std::string>& valueNames) override;
    void CloseKey(RegistryKey key) override;

  private:
    class Statement;
    struct Closer {
        void operator()(sqlite3* database) const;
        void operator()(sqlite3_stmt* statement) const;
    };
    enum Query { FindKey, AddKey, ReadValue, WriteValue, RemoveValue, ListValues, QueryCount };

    void Open();
    bool OpenFile(const std::string& name);
    bool Prepare();
    void MoveAside();
    template <typename Work>
    int Guarded(Work&& work);
    int HandOut(std::string_view keyPath, RegistryKey& key);
    const std::string* PathOf(RegistryKey key) const;

    std::filesystem::path file_;
    Note note_;
    std::unique_ptr<sqlite3, Closer> database_;
    std::vector<std::unique_ptr<sqlite3_stmt, Closer>> queries_;
    std::map<RegistryKey, std::string> openKeys_; // to the lower-case key path
    RegistryKey lastKey_ = 0;
};

} // namespace korvalin
