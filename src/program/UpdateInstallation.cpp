#include "program/UpdateInstallation.h"

#include "base/Paths.h"
#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "data/FileActions.h"
#include "errors/Errors.h"
#include "inet/UpdateFiles.h"
#include "lang/Language.h"
#include "lang/MessagePieces.h"
#include "platform/Clock.h"
#include "platform/Events.h"
#include "platform/Files.h"
#include "platform/InstanceLock.h"
#include "platform/MessageBoxes.h"
#include "platform/Shell.h"
#include "settings/Settings.h"

#include <system_error>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

// An old program that is still closing its windows needs its time; a file left over does not.
constexpr double longWait = 30;
constexpr double shortWait = 5;
constexpr int pauseMilliseconds = 100;

} // namespace

UpdateInstallation::UpdateInstallation(const Parts& parts, const fs::path& programFolder)
    : parts_(parts),
      program_(programFolder / ProgramFileName),
      programBeside_(programFolder / "Korvalin.exe.part"),
      newProgram_(programFolder / NewProgramFileName),
      languageFile_(programFolder / LanguageFileName),
      newLanguageFile_(programFolder / NewLanguageFileName),
      newLanguageText_(programFolder / "KorvalinLng_new.txt") {}

bool UpdateInstallation::Run() {
    const bool isNew = EqualsNoCase(parts_.Shell.ExecutablePath().filename().string(), NewProgramFileName);
    return isNew ? Install() : HandOver();
}

bool UpdateInstallation::Delete(const fs::path& file, double seconds) {
    return DeleteFileWait(file, seconds, parts_.Events, parts_.Clock);
}

// ---- as the normal program

bool UpdateInstallation::HandOver() {
    if (!FileExists(newProgram_)) return false;
    if (!IsWorthStarting(newProgram_, program_)) {
        Delete(newProgram_, shortWait);
        return false;
    }
    TakePermissions(newProgram_, parts_.Shell.ExecutablePath());
    if (parts_.Shell.StartProgram(newProgram_)) return true;
    // No program at all, an error page for instance: this one goes on, and does not meet it again.
    parts_.Errors.WriteErrorLog("cannot be started: " + newProgram_.string(), "update");
    Delete(newProgram_, shortWait);
    return false;
}

// ---- as the new program

bool UpdateInstallation::Install() {
    parts_.Errors.Step("Main", [this] { TakeLanguageText(); });
    LoadTexts();
    // Before the old program goes: without a whole copy (a full disk) this one goes on as the program, the
    // old one stays, and the next start tries again.
    if (!parts_.Errors.Step("Main", [this] { CopyProgram(); })) return false;
    if (!RemoveOldProgram() || !RemoveOldLanguage()) {
        Delete(programBeside_, shortWait);
        return true;
    }
    const bool inPlace = parts_.Errors.Step("Main", [this] { fs::rename(programBeside_, program_); });
    parts_.Errors.Step("Main", [this] { TakeLanguageFile(); });
    if (!inPlace) return false;
    parts_.Settings.Set(Keys::UpdateLast, parts_.Clock.Now());
    return parts_.Shell.StartProgram(program_);
}

void UpdateInstallation::TakeLanguageText() {
    if (FileExists(newLanguageFile_) || !FileExists(newLanguageText_)) return;
    fs::rename(newLanguageText_, newLanguageFile_);
    if (!parts_.Files.Copy(newLanguageFile_, languageFile_)) {
        throw fs::filesystem_error("The language file could not be copied", newLanguageFile_, languageFile_,
                                   std::make_error_code(std::errc::io_error));
    }
}

// The texts are not loaded yet at this point of the start; nobody is asked for a language here.
void UpdateInstallation::LoadTexts() {
    if (parts_.Language.LoadLanguageChoices())
        parts_.Language.ChooseLanguage(parts_.Settings.Get(Keys::Language));
}

bool UpdateInstallation::RemoveOldProgram() {
    if (WaitForOldProgram()) return true;
    ShowPieces(parts_.MessageBoxes, parts_.Language, {18, program_.string(), 19}, MessageIcon::Warning);
    if (AwaitEnd() && Delete(program_, longWait)) return true;
    ShowPieces(parts_.MessageBoxes, parts_.Language, {18, program_.string(), 23, newProgram_.string(), 25},
               MessageIcon::Warning);
    return false;
}

bool UpdateInstallation::WaitForOldProgram() {
    const std::string text = parts_.Language.Lng("modAllgemein", 45, {.ReportMissing = true});
    if (text != TextNotFound) parts_.MessageBoxes.ShowWaiting(text, std::string(ProgramTitle));
    parts_.Events.ProcessPending();
    const bool gone = AwaitEnd() && Delete(program_, longWait);
    parts_.MessageBoxes.CloseWaiting();
    return gone;
}

// A running program's file can be deleted on some systems: only its lock tells that it has ended.
bool UpdateInstallation::AwaitEnd() {
    const double giveUp = parts_.Clock.AwakeSeconds() + longWait;
    while (parts_.InstanceLock.IsRunning(ProgramFileName)) {
        if (parts_.Clock.AwakeSeconds() >= giveUp) return false;
        parts_.Events.ProcessPending();
        parts_.Events.Sleep(pauseMilliseconds);
    }
    return true;
}

// Only to make room: without a new file the old one is the only one there is.
bool UpdateInstallation::RemoveOldLanguage() {
    if (!FileExists(newLanguageFile_) || Delete(languageFile_, longWait)) return true;
    ShowPieces(parts_.MessageBoxes, parts_.Language, {18, languageFile_.string(), 27}, MessageIcon::Warning);
    return false;
}

void UpdateInstallation::CopyProgram() {
    const fs::path running = parts_.Shell.ExecutablePath();
    if (!parts_.Files.Copy(running, programBeside_) ||
        fs::file_size(programBeside_) != fs::file_size(running)) {
        std::error_code ignored;
        fs::remove(programBeside_, ignored);
        throw fs::filesystem_error("The new program could not be copied", running, programBeside_,
                                   std::make_error_code(std::errc::io_error));
    }
    // As old as its source: were it older, as after a clock set back, it would hand over to that one again
    // and again.
    std::error_code ignored;
    fs::last_write_time(programBeside_, fs::last_write_time(running), ignored);
}

void UpdateInstallation::TakeLanguageFile() {
    if (FileExists(newLanguageFile_)) fs::rename(newLanguageFile_, languageFile_);
}

} // namespace korvalin
