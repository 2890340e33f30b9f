#include "platform/linux/AutostartRegistry.h"

#include "base/Text.h"

#include <fstream>
#include <system_error>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view runKeyPath = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr RegistryKey runKey = -1; // the inner registry's keys are positive
constexpr std::string_view programField = "X-Korvalin-Program=";

// A value names a program without its extension; what can be started is the launcher beside it, or the program itself.
fs::path Startable(const fs::path& program) {
    std::error_code ignored;
    const fs::path launcher = program.parent_path() / ToLower(program.filename().string());
    if (fs::exists(launcher, ignored)) return launcher;
    return fs::exists(program, ignored) ? program : fs::path(program.string() + ".exe");
}

// Quoting of the Desktop Entry rules: inside double quotes ", `, $ and \ are escaped; as the value of a string key every
// backslash is doubled once more, and a percent sign would start a field code.
std::string QuoteForExec(const std::string& argument) {
    std::string quoted = "\"";
    for (const char c : argument) {
        if (c == '\\') {
            quoted += "\\\\\\\\";
        } else if (c == '"' || c == '`' || c == '$') {
            quoted += std::string("\\\\") + c;
        } else if (c == '%') {
            quoted += "%%";
        } else {
            quoted += c;
        }
    }
    return quoted + "\"";
}

std::string EscapeLine(std::string_view text) {
    return ReplaceAll(ReplaceAll(ReplaceAll(text, "\\", "\\\\"), "\n", "\\n"), "\t", "\\t");
}

std::string UnescapeLine(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            plain += text[i];
            continue;
        }
        ++i;
        plain += text[i] == 'n' ? '\n' : text[i] == 't' ? '\t' : text[i];
    }
    return plain;
}

} // namespace

AutostartRegistry::AutostartRegistry(Registry& inner, Files& files, fs::path autostartFolder)
    : inner_(inner), files_(files), folder_(std::move(autostartFolder)) {}

fs::path AutostartRegistry::EntryFile(std::string_view valueName) const {
    return folder_ / (ReplaceAll(ToLower(valueName), "/", "-") + ".desktop");
}

int AutostartRegistry::CreateKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access, RegistryKey& key,
                                   RegistryDisposition& disposition) {
    if (!EqualsNoCase(keyPath, runKeyPath)) return inner_.CreateKeyEx(hive, keyPath, access, key, disposition);
    key = runKey;
    disposition = RegistryDisposition::OpenedExistingKey; // the folder is made with its first entry
    return ErrorSuccess;
}

int AutostartRegistry::OpenKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access, RegistryKey& key) {
    if (!EqualsNoCase(keyPath, runKeyPath)) return inner_.OpenKeyEx(hive, keyPath, access, key);
    key = runKey;
    return ErrorSuccess;
}

int AutostartRegistry::QueryValueEx(RegistryKey key, std::string_view valueName, std::size_t bufferSize,
                                    std::string& text) {
    if (key != runKey) return inner_.QueryValueEx(key, valueName, bufferSize, text);
    std::ifstream file(EntryFile(valueName));
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(programField)) continue;
        const std::string stored = UnescapeLine(line.substr(programField.size()));
        if (stored.size() + 1 > bufferSize) return ErrorMoreData;
        text = stored;
        return ErrorSuccess;
    }
    return ErrorFileNotFound;
}

int AutostartRegistry::SetValueEx(RegistryKey key, std::string_view valueName, std::string_view text) {
    if (key != runKey) return inner_.SetValueEx(key, valueName, text);
    if (files_.CreateFolders(folder_) != 0) return ErrorAccessDenied;
    const std::string entry = "[Desktop Entry]\nType=Application\nName=" + EscapeLine(valueName) +
                              "\nExec=" + QuoteForExec(Startable(fs::path(text)).string()) +
                              "\nTerminal=false\nX-GNOME-Autostart-enabled=true\n" + std::string(programField) +
                              EscapeLine(text) + "\n";
    return files_.Replace(EntryFile(valueName), entry) ? ErrorSuccess : ErrorWriteFault;
}

int AutostartRegistry::DeleteValue(RegistryKey key, std::string_view valueName) {
    if (key != runKey) return inner_.DeleteValue(key, valueName);
    std::error_code error;
    if (fs::remove(EntryFile(valueName), error)) return ErrorSuccess;
    return error ? ErrorAccessDenied : ErrorFileNotFound;
}

int AutostartRegistry::EnumValues(RegistryKey key, std::vector<std::string>& valueNames) {
    if (key != runKey) return inner_.EnumValues(key, valueNames);
    valueNames.clear(); // what else starts with the system is none of this program's business
    return ErrorSuccess;
}

void AutostartRegistry::CloseKey(RegistryKey key) {
    if (key != runKey) inner_.CloseKey(key);
}

} // namespace korvalin
