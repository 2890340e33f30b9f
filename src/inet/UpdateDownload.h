#pragma once

#include "base/Date.h"
#include "base/ProgramVersion.h"
#include "inet/UpdatePage.h"

#include <filesystem>
#include <functional>
#include <string>

namespace korvalin {

class Clock;
class Errors;
class Files;
class Language;
class Settings;
class Shell;
class UpdateSite;

/// Brings a new version into the program folder and keeps the running one beside it.
class UpdateDownload {
  public:
    struct Parts {
        korvalin::UpdateSite& UpdateSite;
        korvalin::Settings& Settings;
        korvalin::Language& Language;
        korvalin::Errors& Errors;
        korvalin::Files& Files;
        korvalin::Shell& Shell;
        korvalin::Clock& Clock;
        std::filesystem::path ProgramFolder;
        ProgramVersion Version;
    };
    struct Hooks {
        /// Takes the line of text that tells what is going on.
        std::function<void(const std::string& text)> ShowStatus = [](const std::string&) {};
    };
    enum class Outcome { Ready, Failed, TooEarly };
    enum class Place {
        Good,
        ReadOnly,
        Unsafe ///< others could change the files, or the new program that would be replaced is running
    };

    explicit UpdateDownload(Parts parts);

    void Plug(Hooks hooks) { hooks_ = std::move(hooks); }

    /// Whether a new program can be put into the program folder.
    Place LookAtPlace();

    /// Fetches and checks all files of the update, which then lie beside under names that no start looks at.
    /// Each attempt puts UpdateNext further ahead.
    Outcome Run(const UpdateOffer& offer, const UpdatePage& page);

    /// Makes what Run has fetched the update: from now on every start installs it. False when it cannot be
    /// saved.
    [[nodiscard]] bool Commit();

    /// Removes what was fetched.
    void Discard();

    std::filesystem::path NewProgram() const;

  private:
    std::filesystem::path Fetched(const char* name) const;
    std::string Text(int number);
    void CountAttempt();
    void RemovePartsOf(const std::filesystem::path& file);
    bool DownloadLanguage(const UpdatePage& page);
    bool PutInPlace();
    void KeepRunningVersion();
    void Keep(const std::filesystem::path& file, const std::string& name);

    Parts parts_;
    Hooks hooks_;
    int attempts_ = 0;
};

} // namespace korvalin
