#include "inet/UpdateDownload.h"

#include "base/Paths.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "inet/UpdateFiles.h"
#include "inet/UpdateSite.h"
#include "lang/Language.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Shell.h"
#include "settings/Settings.h"

#include <system_error>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

// A server that is being repaired is not asked again and again.
Date NextAttempt(int attempts, Date now) {
    constexpr int manyAttempts = 3;
    constexpr int tooManyAttempts = 6;
    if (attempts >= tooManyAttempts) return DayOf(now) + 1;
    return attempts >= manyAttempts ? now + 600 * OneSecond : now + 30 * OneSecond;
}

} // namespace

UpdateDownload::UpdateDownload(Parts parts) : parts_(std::move(parts)) {}

std::string UpdateDownload::Text(int number) {
    return parts_.Language.Lng("modInternet", number);
}

fs::path UpdateDownload::NewProgram() const {
    return parts_.ProgramFolder / NewProgramFileName;
}

fs::path UpdateDownload::Fetched(const char* name) const {
    return parts_.ProgramFolder / (std::string(name) + ".part");
}

UpdateDownload::Place UpdateDownload::LookAtPlace() {
    // A new program that could not install itself waits to be started anew; it is not replaced while it runs.
    if (EqualsNoCase(parts_.Shell.ExecutablePath().filename().string(), NewProgramFileName))
        return Place::Unsafe;
    const fs::path trial = Fetched(NewProgramFileName);
    const bool isWritten = parts_.Files.Replace(trial, "");
    const bool isOurs = parts_.Files.IsOursAlone(trial);
    std::error_code ignored;
    fs::remove(trial, ignored);
    if (!isWritten) return Place::ReadOnly;
    return isOurs ? Place::Good : Place::Unsafe;
}

UpdateDownload::Outcome UpdateDownload::Run(const UpdateOffer& offer, const UpdatePage& page) {
    if (parts_.Settings.Get(Keys::UpdateNext) > parts_.Clock.Now()) return Outcome::TooEarly;
    Discard(); // what an earlier run has left
    CountAttempt();
    hooks_.ShowStatus(Text(16) + NewProgramFileName);
    if (!parts_.UpdateSite.Fetch(offer.FileName, Fetched(NewProgramFileName)) || !DownloadLanguage(page)) {
        Discard();
        return Outcome::Failed;
    }
    hooks_.ShowStatus(Text(17));
    return Outcome::Ready;
}

bool UpdateDownload::Commit() {
    KeepRunningVersion();
    if (PutInPlace()) return true;
    Discard();
    return false;
}

// The program comes last: it is what a start looks for.
bool UpdateDownload::PutInPlace() {
    const std::string& manifest = parts_.UpdateSite.ManifestText();
    std::error_code error;
    if (manifest.empty() || parts_.Files.Replace(parts_.ProgramFolder / NewManifestFileName, manifest)) {
        fs::rename(Fetched(NewLanguageFileName), parts_.ProgramFolder / NewLanguageFileName, error);
        if (!error) fs::rename(Fetched(NewProgramFileName), NewProgram(), error);
        if (!error) return true;
    }
    parts_.Errors.WriteErrorLog("cannot be put in place: " + NewProgram().string(), "Update");
    return false;
}

void UpdateDownload::Discard() {
    std::error_code ignored;
    for (const char* name : {NewProgramFileName, NewLanguageFileName, NewManifestFileName}) {
        fs::remove(parts_.ProgramFolder / name, ignored);
        fs::remove(Fetched(name), ignored);
        RemovePartsOf(Fetched(name));
    }
}

// A program that was killed could not remove the file that a download was coming into.
void UpdateDownload::RemovePartsOf(const fs::path& file) {
    const std::string beginning = file.filename().string() + ".new-";
    std::error_code error;
    for (fs::directory_iterator entry(file.parent_path(), error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        std::error_code ignored;
        if (entry->path().filename().string().starts_with(beginning)) fs::remove(entry->path(), ignored);
    }
}

void UpdateDownload::CountAttempt() {
    parts_.Settings.Set(Keys::UpdateNext, NextAttempt(++attempts_, parts_.Clock.Now()));
}

bool UpdateDownload::DownloadLanguage(const UpdatePage& page) {
    const std::string about = page.LanguageInformation(parts_.Language.LanguageCode());
    hooks_.ShowStatus(Text(16) + NewLanguageFileName + (about.empty() ? "" : " (" + about + ")"));
    return parts_.UpdateSite.Fetch(LanguageFileName, Fetched(NewLanguageFileName));
}

void UpdateDownload::KeepRunningVersion() {
    Keep(parts_.Shell.ExecutablePath(), KeptProgramName(parts_.Version));
    Keep(parts_.ProgramFolder / LanguageFileName, KeptLanguageName(parts_.Version));
}

// Without its copy the update goes on: a full disk shows itself when the new program installs itself.
void UpdateDownload::Keep(const fs::path& file, const std::string& name) {
    if (!parts_.Files.Copy(file, parts_.ProgramFolder / name))
        parts_.Errors.WriteErrorLog("cannot be kept as " + name + ": " + file.string(), "Update");
}

} // namespace korvalin
