#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace korvalin {

class Files;

/// The desktop's autostart entry of this program, korvalin.desktop.
class AutostartFile {
  public:
    AutostartFile(Files& files, const std::filesystem::path& autostartFolder);

    /// The path that the entry was written with; nullopt when there is none or it starts nothing.
    std::optional<std::string> Read() const;
    /// False when it cannot be written, or the user has switched the entry off.
    bool Write(std::string_view registeredPath);
    /// True when there was one.
    bool Remove();

  private:
    Files& files_;
    std::filesystem::path file_;
};

} // namespace korvalin
