#include "program/UpdateInstallation.h"

#include "base/Paths.h"
#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "data/FileActions.h"
#include "errors/Errors.h"
#include "inet/NewProgramStart.h"
#include "inet/UpdateFiles.h"
#include "inet/UpdateSite.h"
#include "lang/Language.h"
#include "lang/LanguageFile.h"
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
constexpr int mostStarts = 2;

} // namespace

UpdateInstallation::UpdateInstallation(const Parts& parts, const fs::path& programFolder)
    : parts_(parts),
      program_(programFolder / ProgramFileName),
      programBeside_(programFolder / "Korvalin.exe.part"),
      newProgram_(programFolder / NewProgramFileName),
      languageFile_(programFolder / LanguageFileName),
      newLanguageFile_(programFolder / NewLanguageFileName),
      newLanguageText_(programFolder / "KorvalinLng_new.txt"),
      manifest_(programFolder / NewManifestFileName),
      failedProgram_(programFolder / FailedProgramFileName) {}

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
        for (const fs::path& file : {newProgram_, newLanguageFile_, manifest_})
            Delete(file, shortWait);
        return false;
    }
    if (!MayStart()) {
        parts_.Errors.WriteErrorLog("is not from an update and is not started: " + newProgram_.string(),
                                    "update");
        return false;
    }
    if (StartCounted()) return true;
    SetAside();
    return false;
}

// A download has made its program executable; one that a browser has put here is none of it.
bool UpdateInstallation::MayStart() {
    return parts_.Files.IsOursAlone(newProgram_) && IsExecutable(newProgram_) &&
           parts_.UpdateSite.IsSigned(newProgram_, "", manifest_);
}

// One that has ended before it could install itself gets a second chance; a third would leave the user
// without a program for ever.
bool UpdateInstallation::StartCounted() {
    const int starts = parts_.Settings.Get(Keys::UpdateStarts);
    if (starts >= mostStarts) return false;
    parts_.Settings.Set(Keys::UpdateStarts, starts + 1);
    return StartNewProgram(newProgram_, parts_.Shell, parts_.InstanceLock, parts_.Events, parts_.Clock);
}

// This program goes on, and does not meet that one again.
void UpdateInstallation::SetAside() {
    parts_.Settings.Set(Keys::UpdateStarts, 0);
    Delete(newLanguageFile_, shortWait);
    Delete(manifest_, shortWait);
    std::error_code error;
    fs::rename(newProgram_, failedProgram_, error);
    if (error) Delete(newProgram_, shortWait);
    parts_.Errors.WriteErrorLog("cannot be started: " + newProgram_.string(), "update");
    LoadTexts();
    parts_.MessageBoxes.Show(parts_.Language.Lng("modInternet", 36) + failedProgram_.string(),
                             std::string(ProgramTitle), MessageIcon::Warning, MessageButtons::Ok);
}

// ---- as the new program

// At every moment there is a program that starts: the old one, which can do with newer texts, or the new one.
bool UpdateInstallation::Install() {
    parts_.Errors.Step("Main", [this] { TakeLanguageText(); });
    parts_.Errors.Step("Main", [this] { CheckLanguageFile(); });
    LoadTexts();
    // Without a whole copy (a full disk) this one goes on as the program, the old one stays, and the next
    // start tries again.
    if (!parts_.Errors.Step("Main", [this] { CopyProgram(); })) return false;
    if (!AwaitOldProgram() || !PutLanguageInPlace() || !PutProgramInPlace()) {
        Delete(programBeside_, shortWait);
        return true;
    }
    Delete(manifest_, 0);
    parts_.Settings.Set(Keys::UpdateStarts, 0);
    parts_.Settings.Set(Keys::UpdateLast, parts_.Clock.Now());
    return parts_.Shell.StartProgram(program_);
}

void UpdateInstallation::TakeLanguageText() {
    if (FileExists(newLanguageFile_) || !FileExists(newLanguageText_)) return;
    fs::rename(newLanguageText_, newLanguageFile_);
}

// The old texts are better than none.
void UpdateInstallation::CheckLanguageFile() {
    if (!FileExists(newLanguageFile_)) return;
    std::string fault = LanguageFileFault(newLanguageFile_, parts_.Settings.Get(Keys::Language));
    if (fault.empty() && !parts_.UpdateSite.IsSigned(newLanguageFile_, LanguageFileName, manifest_))
        fault = "is not signed by the maker";
    if (fault.empty()) return;
    parts_.Errors.WriteErrorLog(newLanguageFile_.string() + " " + fault, "update");
    Delete(newLanguageFile_, shortWait);
}

// The texts are not loaded yet at this point of the start; nobody is asked for a language here.
void UpdateInstallation::LoadTexts() {
    if (parts_.Language.LoadLanguageChoices())
        parts_.Language.ChooseLanguage(parts_.Settings.Get(Keys::Language));
}

bool UpdateInstallation::AwaitOldProgram() {
    const std::string text = parts_.Language.Lng("modAllgemein", 45, {.ReportMissing = true});
    if (text != TextNotFound) parts_.MessageBoxes.ShowWaiting(text, std::string(ProgramTitle));
    parts_.Events.ProcessPending();
    const bool ended = AwaitEnd();
    parts_.MessageBoxes.CloseWaiting();
    if (ended) return true;
    ShowPieces(parts_.MessageBoxes, parts_.Language, {18, program_.string(), 19}, MessageIcon::Warning);
    return AwaitEnd();
}

// A running program's file can be replaced on some systems: only its lock tells that it has ended.
bool UpdateInstallation::AwaitEnd() {
    const double giveUp = parts_.Clock.AwakeSeconds() + longWait;
    while (parts_.InstanceLock.IsRunning(ProgramFileName)) {
        if (parts_.Clock.AwakeSeconds() >= giveUp) return false;
        parts_.Events.ProcessPending();
        parts_.Events.Sleep(pauseMilliseconds);
    }
    return true;
}

bool UpdateInstallation::PutProgramInPlace() {
    if (Move(programBeside_, program_, longWait)) return true;
    ShowPieces(parts_.MessageBoxes, parts_.Language, {18, program_.string(), 19}, MessageIcon::Warning);
    if (Move(programBeside_, program_, longWait)) return true;
    ShowPieces(parts_.MessageBoxes, parts_.Language, {18, program_.string(), 23, newProgram_.string(), 25},
               MessageIcon::Warning);
    return false;
}

bool UpdateInstallation::PutLanguageInPlace() {
    if (!FileExists(newLanguageFile_) || Move(newLanguageFile_, languageFile_, longWait)) return true;
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

// Replaces a file in one step, trying again while something holds it; windows stay alive meanwhile.
bool UpdateInstallation::Move(const fs::path& from, const fs::path& to, double seconds) {
    const double giveUp = parts_.Clock.AwakeSeconds() + seconds;
    std::error_code error;
    for (fs::rename(from, to, error); error; fs::rename(from, to, error)) {
        if (parts_.Clock.AwakeSeconds() >= giveUp) return false;
        parts_.Events.ProcessPending();
        parts_.Events.Sleep(pauseMilliseconds);
    }
    return true;
}

} // namespace korvalin
