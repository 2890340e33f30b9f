// The settings store, by key paths and value names.
#pragma once

#include "base/Text.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

/// Room for one text value, its terminating zero included.
inline constexpr std::size_t RegistryBufferBytes = 1024;

/// Key path of the programs that start with the user's desktop. This program's value is all that a system
/// need keep there.
inline constexpr std::string_view RunKeyPath = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";

/// Text values under key paths of the current user. Paths and names are compared without regard to letter
/// case; any character may occur in a name or value. No call throws because of the store, and each sees what
/// any other program instance has written before.
class Registry {
  public:
    virtual ~Registry() = default;

    /// Creates the key: 1 = it was created, 2 = it existed, 0 = the call failed.
    [[nodiscard]] virtual int RegEnsureKey(std::string_view keyPath) = 0;

    /// The text of a value; "" when the key or value is missing, the text is longer than the buffer, or the
    /// call fails.
    [[nodiscard]] std::string RegReadString(std::string_view keyPath, std::string_view valueName) {
        const std::optional<std::string> text = ReadValue(keyPath, valueName);
        return text && text->size() < RegistryBufferBytes ? *text : std::string();
    }

    /// Writes a value, creating its key when missing; a blank text deletes the value instead. True when
    /// something was written or deleted.
    bool RegWriteString(std::string_view keyPath, std::string_view valueName, std::string_view text) {
        if (Trim(text).empty()) return DeleteValue(keyPath, valueName);
        // Somebody may delete the key between its creation and the next attempt, so both are repeated; a
        // store that says "created" and "missing" for ever must not hang the program, though.
        constexpr int attempts = 100;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            const Written written = WriteValue(keyPath, valueName, text);
            if (written != Written::KeyIsMissing) return written == Written::Yes;
            if (RegEnsureKey(keyPath) == 0) return false;
        }
        return false;
    }

    /// The names of all values of a key, as they were first written, in alphabetical order; none when the key
    /// is missing or the call fails.
    [[nodiscard]] virtual std::vector<std::string> RegValueNames(std::string_view keyPath) = 0;

    /// Has what was written reach the medium; false when it does not outlive this run.
    [[nodiscard]] virtual bool RegFlush() = 0;

  protected:
    enum class Written { Yes, No, KeyIsMissing };

    virtual std::optional<std::string> ReadValue(std::string_view keyPath, std::string_view valueName) = 0;
    virtual Written WriteValue(std::string_view keyPath, std::string_view valueName,
                               std::string_view text) = 0;
    /// True when there was a value to delete.
    virtual bool DeleteValue(std::string_view keyPath, std::string_view valueName) = 0;
};

} // namespace korvalin
