#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace korvalin {

class DataFolder;
class Events;
class Language;
class MessageBoxes;
class Settings;
class Shell;

/// Fetches a file of the maker's update folder; false when it did not arrive whole.
using Download = std::function<bool(const std::string& name, const std::filesystem::path& target)>;

/// Control files that the program can use when the system has them.
class Components {
  public:
    /// `download` may be empty where there is no web access; `downloadPage` is the maker's page for people.
    Components(Settings& settings, Language& language, MessageBoxes& messageBoxes, Shell& shell,
               Events& events, DataFolder& dataFolder, Download download, std::string downloadPage);

    /// Whether the system has a control file. If not, and unless `silent`, offers to install it.
    bool CheckVBComponent(const std::string& fileName, bool silent);

  private:
    bool IsUnwanted(const std::string& fileName);
    bool UserWants(const std::string& fileName);
    void Install();

    Settings& settings_;
    Language& language_;
    MessageBoxes& messageBoxes_;
    Shell& shell_;
    Events& events_;
    DataFolder& dataFolder_;
    Download download_;
    std::string downloadPage_;
};

} // namespace korvalin
