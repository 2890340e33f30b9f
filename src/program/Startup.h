#pragma once

#include "base/ProgramVersion.h"
#include "program/Components.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace korvalin {

class Clock;
class Errors;
class InstanceLock;
class UpdateInstallation;

/// What happens before any window exists.
class Startup {
  public:
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        korvalin::MessageBoxes& MessageBoxes;
        korvalin::Shell& Shell;
        korvalin::Clock& Clock;
        korvalin::InstanceLock& InstanceLock;
        korvalin::DataFolder& DataFolder;
        korvalin::UpdateInstallation& UpdateInstallation;
        korvalin::Components& Components;
        /// May be empty: no download is possible then.
        korvalin::Download Download;
        std::function<void()> CreateLineTable;
        std::function<void()> LoadUserVar;
    };

    Startup(Parts parts, const ProgramVersion& version);

    /// Prepares everything for the main window. False when the program must end without it.
    [[nodiscard]] bool Main();

    /// True when an earlier instance is running and the user wants only one.
    [[nodiscard]] bool AnotherInstanceRefused();

    /// "V2.1.7", for the whole run.
    const std::string& ProgramVersionText() const { return versionText_; }

  private:
    bool Step(const std::function<void()>& step);
    bool UpdateTakesOver();
    void OfferLanguageFile();
    bool LoadTexts();
    bool UserWantsLanguageFile(std::string_view problem);
    bool DownloadLanguageFile();
    bool PlatformServes();
    void KeepUpdateNextInPast();
    void NoteVersion();
    void CheckComponents();

    Parts parts_;
    ProgramVersion version_;
    std::string versionText_;
};

} // namespace korvalin
