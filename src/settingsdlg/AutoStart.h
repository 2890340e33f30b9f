#pragma once

#include <filesystem>

namespace korvalin {

class Registry;
class Settings;

/// The program's entry among those that start when the user logs in.
class AutoStartEntry {
  public:
    AutoStartEntry(Settings& settings, Registry& registry, const std::filesystem::path& executable);

    /// Writes or removes the entry and stores the choice; false, and nothing is stored, when the entry cannot
    /// be changed.
    bool AutoStart(bool enable);

  private:
    Settings& settings_;
    Registry& registry_;
    std::filesystem::path executable_;
};

} // namespace korvalin
