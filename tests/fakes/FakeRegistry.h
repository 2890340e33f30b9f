#pragma once

#include "base/Text.h"
#include "platform/Registry.h"

#include <map>

namespace korvalin {

/// A registry in memory. `OpenResult` and `CreateResult` make the next calls fail.
class FakeRegistry : public Registry {
  public:
    int OpenResult = ErrorSuccess;
    int CreateResult = ErrorSuccess;
    int OpenKeys = 0;
    int Writes = 0;

    int CreateKeyEx(RegistryHive, std::string_view keyPath, RegistryAccess, RegistryKey& key,
                    RegistryDisposition& disposition) override {
        if (CreateResult != ErrorSuccess) return CreateResult;
        const bool isNew = keys_.try_emplace(ToLower(keyPath)).second;
        disposition = isNew ? RegistryDisposition::CreatedNewKey : RegistryDisposition::OpenedExistingKey;
        return Hand(keyPath, key);
    }
    int OpenKeyEx(RegistryHive, std::string_view keyPath, RegistryAccess, RegistryKey& key) override {
        if (OpenResult != ErrorSuccess) return OpenResult;
        return keys_.contains(ToLower(keyPath)) ? Hand(keyPath, key) : ErrorFileNotFound;
    }
    int QueryValueEx(RegistryKey key, std::string_view valueName, std::size_t bufferSize,
                     std::string& text) override {
        if (!opened_.contains(key)) return ErrorInvalidHandle;
        const auto& values = keys_[opened_.at(key)];
        const auto found = values.find(ToLower(valueName));
        if (found == values.end()) return ErrorFileNotFound;
        if (found->second.Text.size() + 1 > bufferSize) return ErrorMoreData;
        text = found->second.Text;
        return ErrorSuccess;
    }
    int SetValueEx(RegistryKey key, std::string_view valueName, std::string_view text) override {
        if (!opened_.contains(key)) return ErrorInvalidHandle;
        ++Writes;
        auto& value = keys_[opened_.at(key)][ToLower(valueName)];
        if (value.Name.empty()) value.Name = valueName;
        value.Text = text;
        return ErrorSuccess;
    }
    int DeleteValue(RegistryKey key, std::string_view valueName) override {
        if (!opened_.contains(key)) return ErrorInvalidHandle;
        return keys_[opened_.at(key)].erase(ToLower(valueName)) == 1 ? ErrorSuccess : ErrorFileNotFound;
    }
    int EnumValues(RegistryKey key, std::vector<std::string>& valueNames) override {
        if (!opened_.contains(key)) return ErrorInvalidHandle;
        valueNames.clear();
        for (const auto& [lower, value] : keys_[opened_.at(key)])
            valueNames.push_back(value.Name);
        return ErrorSuccess;
    }
    void CloseKey(RegistryKey key) override { OpenKeys -= static_cast<int>(opened_.erase(key)); }

  private:
    struct Value {
        std::string Name, Text;
    };
    int Hand(std::string_view keyPath, RegistryKey& key) {
        key = ++lastKey_;
        opened_[key] = ToLower(keyPath);
        ++OpenKeys;
        return ErrorSuccess;
    }
    std::map<std::string, std::map<std::string, Value>> keys_;
    std::map<RegistryKey, std::string> opened_;
    RegistryKey lastKey_ = 0;
};

} // namespace korvalin
