#pragma once

#include "base/ProgramVersion.h"

#include <functional>
#include <string>
#include <string_view>

namespace korvalin {

class Clock;
class Components;
class DataFolder;
class Errors;
class InstanceLock;
class Language;
class MessageBoxes;
class Settings;
class Shell;
class UpdateInstallation;
class UpdateSite;
struct LineState;

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
        korvalin::UpdateSite& UpdateSite;
        korvalin::LineState& LineState;
    };
    struct Hooks {
        /// Brings what the settings say into the program.
        std::function<void()> LoadUserVar = [] {};
    };

    Startup(const Parts& parts, const ProgramVersion& version);

    void Plug(Hooks hooks) { hooks_ = std::move(hooks); }

    /// Prepares everything for the main window. False when the program must end without it.
    [[nodiscard]] bool Main();

    /// True when an earlier instance is running and the user wants only one.
    [[nodiscard]] bool AnotherInstanceRefused();

    /// "V2.1.7", for the whole run.
    const std::string& ProgramVersionText() const { return versionText_; }

  private:
    template <typename F>
    bool Step(F&& step);
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
    Hooks hooks_;
    ProgramVersion version_;
    std::string versionText_;
};

} // namespace korvalin
