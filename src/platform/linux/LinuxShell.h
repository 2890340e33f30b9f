#pragma once

#include "platform/Shell.h"

namespace korvalin {

class LinuxShell : public Shell {
  public:
    std::filesystem::path SpecialFolder(int id) override;
    std::filesystem::path SystemDirectory() override { return "/usr/lib/"; }
    /// The toolkit brings every control.
    bool ComponentPresent(const std::string&) override { return true; }
    std::filesystem::path ExecutablePath() override;
    int PlatformId() override { return PlatformSupported; }
    std::string UserLanguage() override;
    bool StartProgram(const std::filesystem::path& program) override;
    /// Only addresses of http and https are opened.
    bool OpenPage(const std::string& address) override;
};

} // namespace korvalin
