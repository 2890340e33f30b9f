#pragma once

#include "platform/Files.h"
#include "platform/Registry.h"

#include <filesystem>

namespace korvalin {

/// A registry whose key for programs that start with the system is the user's autostart entry (XDG autostart, a desktop
/// file). Every other key is the inner registry's.
class AutostartRegistry : public Registry {
  public:
    AutostartRegistry(Registry& inner, Files& files, std::filesystem::path autostartFolder);

    int CreateKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access, RegistryKey& key,
                    RegistryDisposition& disposition) override;
    int OpenKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access, RegistryKey& key) override;
    int QueryValueEx(RegistryKey key, std::string_view valueName, std::size_t bufferSize, std::string& text) override;
    int SetValueEx(RegistryKey key, std::string_view valueName, std::string_view text) override;
    int DeleteValue(RegistryKey key, std::string_view valueName) override;
    int EnumValues(RegistryKey key, std::vector<std::string>& valueNames) override;
    void CloseKey(RegistryKey key) override;

  private:
    std::filesystem::path EntryFile(std::string_view valueName) const;

    Registry& inner_;
    Files& files_;
    std::filesystem::path folder_;
};

} // namespace korvalin
