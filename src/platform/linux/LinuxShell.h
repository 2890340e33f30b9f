#pragma once

#include "platform/Shell.h"

namespace korvalin {

class LinuxShell : public Shell {
  public:
    /// `pageOpener` is the program that opens a page in the user's browser.
    explicit LinuxShell(std::string pageOpener = "xdg-open");

    std::filesystem::path SpecialFolder(int id) override;
    std::filesystem::path SettingsFolder() override;
    std::filesystem::path SystemDirectory() override;
    bool ComponentPresent(const std::string& fileName) override;
    std::filesystem::path ExecutablePath() override;
    int PlatformId() override;
    std::string UserLanguage() override;
    /// The program runs in a session of its own and outlives this one.
    bool StartProgram(const std::filesystem::path& program) override;
    /// Only addresses of http and https are opened.
    bool OpenPage(const std::string& address) override;

  private:
    std::string pageOpener_;
};

} // namespace korvalin
