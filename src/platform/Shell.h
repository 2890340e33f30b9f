#pragma once

#include <filesystem>
#include <string>

namespace korvalin {

/// Identifiers of special folders (CSIDL).
inline constexpr int SpecialFolderCommonAppData = 35;

/// Platform identifier of supported systems, as GetVersionEx tells it.
inline constexpr int PlatformSupported = 2;

/// Folders, programs and system facts.
class Shell {
  public:
    virtual ~Shell() = default;

    /// Path of a special folder; empty when the system has none for this identifier.
    [[nodiscard]] virtual std::filesystem::path SpecialFolder(int id) = 0;

    /// The folder of the program's settings.
    [[nodiscard]] virtual std::filesystem::path SettingsFolder() = 0;

    /// The folder of the system's components.
    [[nodiscard]] virtual std::filesystem::path SystemDirectory() = 0;

    /// Whether a control file is installed (true where the toolkit brings the control).
    [[nodiscard]] virtual bool ComponentPresent(const std::string& fileName) = 0;

    /// Path of the running executable.
    [[nodiscard]] virtual std::filesystem::path ExecutablePath() = 0;

    /// PlatformSupported, or another identifier where the program cannot run.
    [[nodiscard]] virtual int PlatformId() = 0;

    /// Primary language of the user's locale as a two-letter ISO 639 code in lower case ("de"), "en" when
    /// unknown.
    [[nodiscard]] virtual std::string UserLanguage() = 0;

    /// Starts a program without waiting for it; false when it cannot be started.
    [[nodiscard]] virtual bool StartProgram(const std::filesystem::path& program) = 0;

    /// Opens a page in the user's browser; false when nothing opens it.
    [[nodiscard]] virtual bool OpenPage(const std::string& address) = 0;

    /// Opens an address of any scheme ("mailto:") with the program that the user has for it; false when
    /// nothing opens it.
    [[nodiscard]] virtual bool OpenAddress(const std::string& address) = 0;
};

} // namespace korvalin
