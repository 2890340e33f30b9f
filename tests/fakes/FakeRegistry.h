#pragma once

#include "platform/Registry.h"

#include <map>

namespace korvalin {

class FakeRegistry : public Registry {
  public:
    bool IsLost = false; ///< every call fails
    bool IsReadOnly = false;
    std::string ReadOnlyKey; ///< only this key cannot be written
    int Misses = 0;          ///< how often a write finds that somebody has deleted its key
    int Writes = 0;

    int RegEnsureKey(std::string_view keyPath) override {
        if (IsLost) return 0;
        return keys_.try_emplace(ToLower(keyPath)).second ? 1 : 2;
    }
    std::vector<std::string> RegValueNames(std::string_view keyPath) override {
        std::vector<std::string> names;
        for (const auto& [lower, value] : ValuesOf(keyPath))
            names.push_back(value.Name);
        return names;
    }
    bool RegFlush() override { return !IsLost && !IsReadOnly; }

  protected:
    std::optional<std::string> ReadValue(std::string_view keyPath, std::string_view valueName) override {
        const Values values = ValuesOf(keyPath);
        const auto found = values.find(ToLower(valueName));
        return IsLost || found == values.end() ? std::nullopt : std::optional(found->second.Text);
    }
    Written WriteValue(std::string_view keyPath, std::string_view valueName, std::string_view text) override {
        if (IsLost || IsReadOnly || keyPath == ReadOnlyKey) return Written::No;
        const auto key = keys_.find(ToLower(keyPath));
        if (--Misses >= 0 || key == keys_.end()) return Written::KeyIsMissing;
        ++Writes;
        auto& value = key->second[ToLower(valueName)];
        if (value.Name.empty()) value.Name = valueName;
        value.Text = text;
        return Written::Yes;
    }
    bool DeleteValue(std::string_view keyPath, std::string_view valueName) override {
        const auto key = keys_.find(ToLower(keyPath));
        return !IsLost && !IsReadOnly && key != keys_.end() && key->second.erase(ToLower(valueName)) == 1;
    }

  private:
    struct Value {
        std::string Name, Text;
    };
    using Values = std::map<std::string, Value>;
    Values ValuesOf(std::string_view keyPath) const {
        const auto key = keys_.find(ToLower(keyPath));
        return key == keys_.end() ? Values() : key->second;
    }
    std::map<std::string, Values> keys_;
};

} // namespace korvalin
