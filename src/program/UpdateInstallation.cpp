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
    constexpr int doesNotStart = 36;
    constexpr int isNoUpdate = 167;
    if (MayStart() && StartCounted()) return true;
    SetAside(MayStart() ? doesNotStart : isNoUpdate);
    return false;
}

// A download has made its program executable; one that a browser has put here is none of it.
bool UpdateInstallation::MayStart() {
    return IsExecutable(newProgram_) && IsUpdate(newProgram_);
}

bool UpdateInstallation::IsUpdate(const fs::path& program) {
    return parts_.Files.IsOursAlone(program) && IsOurs(newLanguageFile_) && IsOurs(manifest_) &&
           parts_.UpdateSite.IsSignedUpdate(program, newLanguageFile_, manifest_);
}

bool UpdateInstallation::IsOurs(const fs::path& file) {
    std::error_code error;
    const bool isMissing = fs::symlink_status(file, error).type() == fs::file_type::not_found;
    return isMissing || parts_.Files.IsOursAlone(file);
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
void UpdateInstallation::SetAside(int text) {
    parts_.Settings.Set(Keys::UpdateStarts, 0);
    std::error_code error;
    for (const fs::path& file : {newLanguageFile_, manifest_})
        fs::remove(file, error);
    fs::rename(newProgram_, failedProgram_, error);
    parts_.Errors.WriteErrorLog("cannot be started: " + newProgram_.string(), "update");
    if (error) return; // in a folder that cannot be written it would be told at every start
    LoadTexts();
    parts_.MessageBoxes.Show(parts_.Language.Lng("modInternet", text) + failedProgram_.string(),
                             std::string(ProgramTitle), MessageIcon::Warning, MessageButtons::Ok);
}

// ---- as the new program

// At every moment there is a program that starts: the old one, which can do with newer texts, or the new one.
bool UpdateInstallation::Install() {
    parts_.Errors.Step("Main", [this] { TakeLanguageText(); });
    LoadTexts();
    // One that cannot install itself leaves an old program that runs to the user, and otherwise goes on as
    // the program.
    if (!IsWhole() || !parts_.Errors.Step("Main", [this] { CopyProgram(); })) return OldProgramRuns();
    parts_.InstanceLock.SayReady();
    if (!AwaitOldProgram() || !IsWhole() || !PutLanguageInPlace() || !PutProgramInPlace()) {
        Delete(programBeside_, shortWait);
        return true;
    }
    std::error_code ignored;
    fs::remove(manifest_, ignored);
    parts_.Settings.Set(Keys::UpdateStarts, 0);
    parts_.Settings.Set(Keys::UpdateLast, parts_.Clock.Now());
    return parts_.Shell.StartProgram(program_);
}

bool UpdateInstallation::OldProgramRuns() {
    return parts_.InstanceLock.IsRunning(ProgramFileName);
}

void UpdateInstallation::TakeLanguageText() {
    if (FileExists(newLanguageFile_) || !FileExists(newLanguageText_)) return;
    fs::rename(newLanguageText_, newLanguageFile_);
}

// All of the update or nothing: the old texts do not go with the new program, nor may others.
bool UpdateInstallation::IsWhole() {
    std::string fault;
    if (!IsUpdate(parts_.Shell.ExecutablePath())) fault = "is not all of a signed update, or was taken back";
    if (fault.empty() && FileExists(newLanguageFile_))
        fault = LanguageFileFault(newLanguageFile_, parts_.Settings.Get(Keys::Language));
    if (!fault.empty()) parts_.Errors.WriteErrorLog(newLanguageFile_.string() + " " + fault, "update");
    return fault.empty();
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
    while (OldProgramRuns()) {
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
