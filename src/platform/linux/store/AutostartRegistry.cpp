#include "platform/linux/store/AutostartRegistry.h"

#include "base/Text.h"
#include "platform/Files.h"
#include "platform/linux/files/WholeFile.h"
#include "platform/linux/store/DesktopEntry.h"

#include <cerrno>
#include <exception>
#include <unistd.h>

namespace korvalin {
namespace {

constexpr std::string_view programValue = "Korvalin";

// The handle of the Run key, one for all who open it; the inner registry's count upwards from 1.
constexpr RegistryKey runKey = -1;

bool IsProgramValue(std::string_view valueName) {
    return EqualsNoCase(valueName, programValue);
}

bool IsExecutableFile(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

// The program registers "<folder>/Korvalin", its name without ".exe". What can be started is that file if it
// exists, else the launcher beside it, else the program file itself.
std::filesystem::path StartableFile(const std::filesystem::path& registered) {
    if (IsExecutableFile(registered)) return registered;
    const std::filesystem::path launcher = registered.parent_path() / "korvalin";
    return IsExecutableFile(launcher) ? launcher : std::filesystem::path(registered.string() + ".exe");
}

int CodeOf(int error) {
    switch (error) {
    case 0: return ErrorSuccess;
    case ENOENT:
    case ENOTDIR: return ErrorFileNotFound;
    case EACCES:
    case EPERM:
    case EROFS: return ErrorAccessDenied;
    default: return ErrorWriteFault;
    }
}

// The port throws nothing; what can be thrown here is that the memory is full.
template <typename Call>
int Guarded(Call&& call) {
    try {
        return call();
    } catch (const std::exception&) {
        return ErrorWriteFault;
    }
}

} // namespace

AutostartRegistry::AutostartRegistry(Registry& inner, Files& files,
                                     const std::filesystem::path& autostartFolder)
    : inner_(inner), files_(files), entryFile_(autostartFolder / "korvalin.desktop") {}

bool AutostartRegistry::IsRunKey(RegistryKey key) const {
    return key == runKey;
}

std::optional<std::string> AutostartRegistry::ReadEntry() const {
    const std::optional<std::string> entry = ReadWholeFile(entryFile_);
    return entry ? ReadAutostartEntry(*entry) : std::nullopt;
}

int AutostartRegistry::WriteEntry(std::string_view text) {
    if (const int error = files_.CreateFolders(entryFile_.parent_path()); error != 0) {
        return error == ENOTDIR ? ErrorAccessDenied : CodeOf(error);
    }
    const std::string executable = StartableFile(std::filesystem::path(text)).string();
    const std::string entry = WriteAutostartEntry(programValue, executable, text);
    // Asked for at every start: what the user has switched off in the desktop's own list stays off.
    if (const std::optional<std::string> existing = ReadWholeFile(entryFile_)) {
        if (IsSwitchedOff(*existing)) return ErrorAccessDenied;
        if (*existing == entry) return ErrorSuccess;
    }
    return files_.Replace(entryFile_, entry) ? ErrorSuccess : ErrorWriteFault;
}

int AutostartRegistry::RemoveEntry() {
    return CodeOf(unlink(entryFile_.c_str()) == 0 ? 0 : errno);
}

int AutostartRegistry::CreateKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access,
                                   RegistryKey& key, RegistryDisposition& disposition) {
    return Guarded([&] {
        if (!EqualsNoCase(keyPath, RunKeyPath))
            return inner_.CreateKeyEx(hive, keyPath, access, key, disposition);
        key = runKey;
        disposition = RegistryDisposition::OpenedExistingKey;
        return ErrorSuccess;
    });
}

int AutostartRegistry::OpenKeyEx(RegistryHive hive, std::string_view keyPath, RegistryAccess access,
                                 RegistryKey& key) {
    return Guarded([&] {
        if (!EqualsNoCase(keyPath, RunKeyPath)) return inner_.OpenKeyEx(hive, keyPath, access, key);
        key = runKey;
        return ErrorSuccess;
    });
}

int AutostartRegistry::QueryValueEx(RegistryKey key, std::string_view valueName, std::size_t bufferSize,
                                    std::string& text) {
    return Guarded([&] {
        if (!IsRunKey(key)) return inner_.QueryValueEx(key, valueName, bufferSize, text);
        const std::optional<std::string> path = IsProgramValue(valueName) ? ReadEntry() : std::nullopt;
        if (!path) return ErrorFileNotFound;
        if (path->size() + 1 > bufferSize) return ErrorMoreData;
        text = *path;
        return ErrorSuccess;
    });
}

int AutostartRegistry::SetValueEx(RegistryKey key, std::string_view valueName, std::string_view text) {
    return Guarded([&] {
        if (!IsRunKey(key)) return inner_.SetValueEx(key, valueName, text);
        return IsProgramValue(valueName) ? WriteEntry(text) : ErrorAccessDenied;
    });
}

int AutostartRegistry::DeleteValue(RegistryKey key, std::string_view valueName) {
    return Guarded([&] {
        if (!IsRunKey(key)) return inner_.DeleteValue(key, valueName);
        return IsProgramValue(valueName) ? RemoveEntry() : ErrorFileNotFound;
    });
}

int AutostartRegistry::EnumValues(RegistryKey key, std::vector<std::string>& valueNames) {
    return Guarded([&] {
        if (!IsRunKey(key)) return inner_.EnumValues(key, valueNames);
        valueNames.clear();
        if (ReadEntry()) valueNames.emplace_back(programValue);
        return ErrorSuccess;
    });
}

void AutostartRegistry::CloseKey(RegistryKey key) {
    if (!IsRunKey(key)) inner_.CloseKey(key);
}

} // namespace korvalin
