#pragma once

#include <string>
#include <utility>

namespace korvalin {

class DataFolder;
class Events;
class Language;
class MessageBoxes;
class Settings;
class Shell;
class UpdateSite;

/// Control files that the program can use when the system has them.
class Components {
  public:
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::MessageBoxes& MessageBoxes;
        korvalin::Shell& Shell;
        korvalin::Events& Events;
        korvalin::DataFolder& DataFolder;
        korvalin::UpdateSite& UpdateSite;
    };
    /// `downloadPage` is the maker's page for people.
    Components(const Parts& parts, std::string downloadPage)
        : parts_(parts), downloadPage_(std::move(downloadPage)) {}

    /// Whether the system has a control file. If not, and unless `silent`, offers to install it.
    bool CheckVBComponent(const std::string& fileName, bool silent);

  private:
    bool IsUnwanted(const std::string& fileName);
    bool UserWants(const std::string& fileName);
    void Install();

    Parts parts_;
    std::string downloadPage_;
};

} // namespace korvalin
