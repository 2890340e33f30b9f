#pragma once

#include "platform/Shell.h"

namespace korvalin {

class LinuxShell : public Shell {
  public:
    /// `opener` is the program that finds the user's program for an address.
    explicit LinuxShell(std::string opener = "xdg-open");

    std::filesystem::path CommonAppData() override;
    std::filesystem::path SettingsFolder() override;
    bool ComponentPresent(const std::string& fileName) override;
    std::filesystem::path ExecutablePath() override;
    bool IsSupported() override;
    std::string UserLanguage() override;
    /// The program runs in a session of its own and outlives this one.
    bool StartProgram(const std::filesystem::path& program) override;
    /// Only addresses of http and https are opened.
    bool OpenPage(const std::string& address) override;
    bool OpenAddress(const std::string& address) override;

  private:
    std::string opener_;
};

} // namespace korvalin
