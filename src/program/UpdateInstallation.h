#pragma once

#include <filesystem>

namespace korvalin {

class Clock;
class Errors;
class Events;
class Files;
class InstanceLock;
class Language;
class MessageBoxes;
class Settings;
class Shell;
class UpdateSite;

/// Puts an update into place that the update check left in the program folder. The running program cannot
/// replace its own file everywhere, so the new program is started under another name and copies itself over
/// the old one.
class UpdateInstallation {
  public:
    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        korvalin::MessageBoxes& MessageBoxes;
        korvalin::Files& Files;
        korvalin::Shell& Shell;
        korvalin::Events& Events;
        korvalin::Clock& Clock;
        korvalin::InstanceLock& InstanceLock;
        korvalin::UpdateSite& UpdateSite;
    };
    UpdateInstallation(const Parts& parts, const std::filesystem::path& programFolder);

    /// Does the part of this executable: the normal program hands over to a newer one, the new one installs
    /// itself. True when this instance must end.
    [[nodiscard]] bool Run();

  private:
    bool HandOver();
    bool MayStart();
    bool IsUpdate(const std::filesystem::path& program);
    bool IsOurs(const std::filesystem::path& file);
    bool StartCounted();
    void SetAside(int text);
    bool Install();
    void TakeLanguageText();
    bool IsWhole();
    bool OldProgramRuns();
    void LoadTexts();
    bool AwaitOldProgram();
    bool AwaitEnd();
    bool PutProgramInPlace();
    bool PutLanguageInPlace();
    void CopyProgram();
    bool Delete(const std::filesystem::path& file, double seconds);
    bool Move(const std::filesystem::path& from, const std::filesystem::path& to, double seconds);

    Parts parts_;
    std::filesystem::path program_;
    std::filesystem::path programBeside_;
    std::filesystem::path newProgram_;
    std::filesystem::path languageFile_;
    std::filesystem::path newLanguageFile_;
    std::filesystem::path newLanguageText_;
    std::filesystem::path manifest_;
    std::filesystem::path failedProgram_;
};

} // namespace korvalin
