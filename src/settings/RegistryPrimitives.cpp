#include "settings/RegistryPrimitives.h"

#include "base/Text.h"

namespace korvalin {
namespace {

// Somebody may delete the key between its creation and the next attempt to open it, so both are repeated; a
// store that says "created" and "not found" for ever must not hang the program, though.
constexpr int openAttempts = 100;

// A key that is open as long as this object lives.
class OpenedKey {
  public:
    OpenedKey(Registry& registry, RegistryHive hive, std::string_view keyPath, RegistryAccess access)
        : registry_(registry), code_(registry.OpenKeyEx(hive, keyPath, access, key_)) {}
    ~OpenedKey() {
        if (code_ == ErrorSuccess) registry_.CloseKey(key_);
    }
    OpenedKey(const OpenedKey&) = delete;
    OpenedKey& operator=(const OpenedKey&) = delete;

    int Code() const { return code_; }
    bool IsOpen() const { return code_ == ErrorSuccess; }
    RegistryKey Key() const { return key_; }

  private:
    Registry& registry_;
    RegistryKey key_ = 0;
    int code_;
};

bool IsMissingKey(int code) {
    return code == ErrorFileNotFound || code == ErrorBadKey;
}

} // namespace

int RegistryPrimitives::RegEnsureKey(std::string_view keyPath, RegistryHive hive) {
    RegistryKey key = 0;
    RegistryDisposition disposition = RegistryDisposition::None;
    if (registry_.CreateKeyEx(hive, keyPath, RegistryAccess::Write, key, disposition) != ErrorSuccess)
        return 0;
    registry_.CloseKey(key);
    return static_cast<int>(disposition);
}

std::string RegistryPrimitives::RegReadString(std::string_view keyPath, std::string_view valueName,
                                              RegistryHive hive) {
    const OpenedKey opened(registry_, hive, keyPath, RegistryAccess::Read);
    std::string text;
    if (!opened.IsOpen()) return text;
    if (registry_.QueryValueEx(opened.Key(), valueName, RegistryBufferBytes, text) != ErrorSuccess)
        text.clear();
    return text;
}

bool RegistryPrimitives::RegWriteString(std::string_view keyPath, std::string_view valueName,
                                        std::string_view text, RegistryHive hive) {
    if (Trim(text).empty()) {
        const OpenedKey opened(registry_, hive, keyPath, RegistryAccess::SetValue);
        return opened.IsOpen() && registry_.DeleteValue(opened.Key(), valueName) == ErrorSuccess;
    }
    for (int attempt = 0; attempt < openAttempts; ++attempt) {
        const OpenedKey opened(registry_, hive, keyPath, RegistryAccess::SetValue);
        if (opened.IsOpen()) return registry_.SetValueEx(opened.Key(), valueName, text) == ErrorSuccess;
        if (!IsMissingKey(opened.Code()) || RegEnsureKey(keyPath, hive) == 0) return false;
    }
    return false;
}

std::vector<std::string> RegistryPrimitives::RegValueNames(std::string_view keyPath, RegistryHive hive) {
    const OpenedKey opened(registry_, hive, keyPath, RegistryAccess::Read);
    std::vector<std::string> names;
    if (opened.IsOpen() && registry_.EnumValues(opened.Key(), names) != ErrorSuccess) names.clear();
    return names;
}

} // namespace korvalin
