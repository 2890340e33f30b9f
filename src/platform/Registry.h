// The settings store, in the shape of the Win32 registry calls (winreg.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

/// Result codes of the registry and file calls, as winerror.h numbers them.
inline constexpr int ErrorSuccess = 0;
inline constexpr int ErrorFileNotFound = 2;
inline constexpr int ErrorAccessDenied = 5;
inline constexpr int ErrorInvalidHandle = 6;
inline constexpr int ErrorWriteFault = 29;
inline constexpr int ErrorMoreData = 234;
inline constexpr int ErrorBadKey = 1010;

enum class RegistryHive { CurrentUser };
enum class RegistryAccess { Read, SetValue, Write };
enum class RegistryDisposition { None = 0, CreatedNewKey = 1, OpenedExistingKey = 2 };

using RegistryKey = std::int32_t;

/// Text values under key paths. Key paths and value names are compared without regard to letter case; any
/// character may occur in a name or value. Every call returns ErrorSuccess or a code above and throws
/// nothing; a key that was opened must be closed. Every query sees what any other program instance has
/// written before.
class Registry {
  public:
    virtual ~Registry() = default;

    /// Creates the key or opens it when it exists; `disposition` tells which.
    [[nodiscard]] virtual int CreateKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access,
                                          RegistryKey& key, RegistryDisposition& disposition) = 0;

    /// Opens an existing key; ErrorFileNotFound when there is none.
    [[nodiscard]] virtual int OpenKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access,
                                        RegistryKey& key) = 0;

    /// Reads a text value. `bufferSize` is the room in bytes, terminating zero included: a longer value gives
    /// ErrorMoreData, a missing one ErrorFileNotFound; `text` is then left alone.
    [[nodiscard]] virtual int QueryValueEx(RegistryKey key, std::string_view valueName,
                                           std::size_t bufferSize, std::string& text) = 0;

    /// Writes a text value, creating it when missing.
    [[nodiscard]] virtual int SetValueEx(RegistryKey key, std::string_view valueName,
                                         std::string_view text) = 0;

    /// Deletes a value; ErrorFileNotFound when there is none.
    [[nodiscard]] virtual int DeleteValue(RegistryKey key, std::string_view valueName) = 0;

    /// The names of all values of a key, as they were first written, in alphabetical order.
    [[nodiscard]] virtual int EnumValues(RegistryKey key, std::vector<std::string>& valueNames) = 0;

    virtual void CloseKey(RegistryKey key) = 0;
};

} // namespace korvalin
