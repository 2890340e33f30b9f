#pragma once

#include "platform/Registry.h"

#include <filesystem>
#include <optional>

namespace korvalin {

class Files;

/// Key path of the programs that start with the user's desktop.
inline constexpr std::string_view RunKeyPath = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";

/// A registry whose Run key is the desktop's autostart entry of this program (value "Korvalin", file
/// korvalin.desktop); every other key is the inner registry's. Values of other programs are not there and
/// cannot be set.
class AutostartRegistry : public Registry {
  public:
    AutostartRegistry(Registry& inner, Files& files, const std::filesystem::path& autostartFolder);

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

  private:
    bool IsRunKey(RegistryKey key) const;
    std::optional<std::string> ReadEntry() const;
    int WriteEntry(std::string_view text);
    int RemoveEntry();

    Registry& inner_;
    Files& files_;
    std::filesystem::path entryFile_;
};

} // namespace korvalin
