#pragma once

#include <filesystem>
#include <string>

namespace korvalin {

/// Folders, programs and system facts.
class Shell {
  public:
    virtual ~Shell() = default;

    /// The folder below which programs keep their data; empty when the system has none.
    [[nodiscard]] virtual std::filesystem::path CommonAppData() = 0;

    /// The folder of the program's settings.
    [[nodiscard]] virtual std::filesystem::path SettingsFolder() = 0;

    /// Whether a control file is installed (true where the toolkit brings the control).
    [[nodiscard]] virtual bool ComponentPresent(const std::string& fileName) = 0;

    /// Path of the running executable.
    [[nodiscard]] virtual std::filesystem::path ExecutablePath() = 0;

    /// Whether the program can run on this system.
    [[nodiscard]] virtual bool IsSupported() = 0;

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
