#pragma once

#include "base/Date.h"
#include "base/Locale.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/MessageBoxes.h"

#include <exception>
#include <filesystem>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace korvalin {

/// A failure with the system's own number (a Win32, RAS or errno value).
class NumberedError : public std::runtime_error {
  public:
    NumberedError(int number, const std::string& text) : std::runtime_error(text), number_(number) {}
    /// The number that the user is told.
    int Number() const { return number_; }

  private:
    int number_;
};

/// The system's number that an exception carries; 0 when it has none.
int ErrorNumber(const std::exception& error);

/// The one way of telling the user about an error, and the diagnostic log. What can happen to every file (a
/// full disk, a folder without permission) is told in plain words, with what to do; the rest as unexpected,
/// with what helps to find its cause.
///
/// Errors stand below texts and folders, which both report errors; so the text lookup and the data folder are
/// hooks that the program plugs in. Until then the lookup gives empty texts and there is no log.
class Errors {
  public:
    struct Hooks {
        /// Text of section "modGlobal" by number, trimmed, missing ones reported.
        std::function<std::string(int number)> Text;
        /// The data folder.
        std::function<std::filesystem::path()> DataFolder;
        /// Ends the program at once, but for what must be saved before.
        std::function<void()> EndProgram;
        /// Takes the log when the data folder does not.
        std::function<std::filesystem::path()> SpareFolder = [] { return std::filesystem::path(); };
    };

    Errors(Clock& clock, Files& files, MessageBoxes& messageBoxes, const Locale& locale,
           std::string executableName);

    void Plug(Hooks hooks) { hooks_ = std::move(hooks); }

    /// Shows an error in the program's words: `procName` is the routine it happened in. A second report
    /// within two seconds asks first whether to end the program.
    void DisplayError(std::string_view procName, int errNumber, std::string_view errText);

    /// What has happened to a file and what to do, in the user's words; empty when it is nothing that can
    /// happen to every file.
    std::string InWords(const std::system_error& error) const;

    /// Appends one line (date and time, group, message) to the error log; a line that cannot be written is
    /// lost. Line breaks inside the message become blanks. The log is moved to "..._ErrorLog.old.txt" before
    /// it reaches 1 MB.
    void WriteErrorLog(std::string_view message, std::string_view group);

    /// Runs one step; an exception is reported with DisplayError and ends only this step. True when it went
    /// through.
    template <typename F>
    bool Step(std::string_view procName, F&& step) {
        try {
            std::forward<F>(step)();
            return true;
        } catch (const std::exception& error) {
            Report(procName, error);
            return false;
        }
    }

    /// The wall clock was set: moves the moment of the last report by `days` with it.
    void ShiftMoments(Date days);

  private:
    void Report(std::string_view procName, const std::exception& error);
    std::string ExpectedFailure(const std::exception& error) const;
    void DisplayFailure(std::string_view procName, const std::string& text);
    bool UserEndsProgram();
    bool AppendToLog(const std::filesystem::path& folder, const std::string& line);

    Clock& clock_;
    Files& files_;
    MessageBoxes& messageBoxes_;
    const Locale& locale_;
    std::string executableName_;
    Hooks hooks_;
    Date lastErrorTime_ = 0;
    std::string lastFailure_;
    Date lastFailureTime_ = 0;
    std::set<std::string> openFailures_; // whose boxes are shown
    bool ending_ = false;
};

} // namespace korvalin
