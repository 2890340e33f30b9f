#include "inet/UpdateSite.h"

#include "errors/Errors.h"
#include "inet/ShownText.h"
#include "inet/UpdateFiles.h"
#include "inet/WebAddress.h"
#include "inet/WebFetch.h"
#include "lang/LanguageFile.h"
#include "platform/Clock.h"
#include "platform/Signatures.h"
#include "settings/Settings.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

constexpr const char* manifestName = "update.manifest";

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::uintmax_t LengthOf(const fs::path& file) {
    std::error_code error;
    const auto length = fs::file_size(file, error);
    return error ? 0 : length;
}

} // namespace

UpdateSite::UpdateSite(UpdateConfiguration configuration, Parts parts)
    : configuration_(std::move(configuration)), parts_(std::move(parts)) {}

UpdatePage UpdateSite::LoadPage(const std::string& name) {
    return cancelled_ ? UpdatePage() : UpdatePage(parts_.WebFetch.HtmLoadPage(configuration_.Site + name));
}

void UpdateSite::Begin() {
    cancelled_ = false;
    fault_ = UpdateFault::None;
    manifest_.reset(); // it may be another by now
}

void UpdateSite::Cancel() {
    cancelled_ = true;
    parts_.WebFetch.Cancel();
}

bool UpdateSite::Refuse(const std::string& name, UpdateFault fault, const std::string& why) {
    fault_ = fault;
    if (!cancelled_) parts_.Errors.WriteErrorLog(ShownText(name) + ": " + why, "Update");
    return false;
}

// ---- what the maker has signed

bool UpdateSite::Vouches(const ProgramVersion& offered) {
    if (configuration_.PublicKey.empty()) return true;
    if (!LoadManifest()) return false;
    if (manifest_->Version.Numbers() == offered.Numbers()) return true;
    return Refuse(manifestName, UpdateFault::OtherVersion,
                  "signed is " + manifest_->Version.Numbers() + ", offered " + offered.Numbers());
}

bool UpdateSite::LoadManifest() {
    if (manifest_) return true;
    manifestText_ = LoadPage(manifestName).Text();
    if (manifestText_.empty()) return Refuse(manifestName, FaultOfFetch(), parts_.WebFetch.State().Status);
    const auto manifest = ReadManifest(manifestText_, parts_.Signatures, configuration_.PublicKey);
    if (!manifest) return Refuse(manifestName, UpdateFault::NotSigned, "is not signed by the maker");
    if (!IsCurrent(*manifest, manifestName)) return false;
    manifest_ = manifest;
    return true;
}

// A signature alone stays good for ever: an old one must neither bring an old version back nor keep a new one
// away.
bool UpdateSite::IsCurrent(const UpdateManifest& manifest, const std::string& name) {
    if (manifest.Expires <= parts_.Clock.Now()) return Refuse(name, UpdateFault::Expired, "has expired");
    if (IsNewer(parts_.Version, manifest.Version))
        return Refuse(name, UpdateFault::OtherVersion,
                      "is about " + manifest.Version.Numbers() + ", an older version");
    return true;
}

bool UpdateSite::IsAsSigned(const std::string& name, const fs::path& file) {
    const UpdateManifest::File* const entry = manifest_->Find(name);
    if (entry == nullptr) return Refuse(name, UpdateFault::NotSigned, "is not signed by the maker");
    if (entry->Bytes == LengthOf(file) && entry->Sha256 == parts_.Signatures.Sha256(file)) return true;
    return Refuse(name, UpdateFault::Damaged, "is not the file that the maker has signed");
}

bool UpdateSite::IsSigned(const fs::path& file, const std::string& name, const fs::path& manifest) {
    if (configuration_.PublicKey.empty()) return true;
    const auto kept = ReadManifest(ReadFile(manifest), parts_.Signatures, configuration_.PublicKey);
    if (!kept || !IsCurrent(*kept, manifest.filename().string())) return false;
    const std::string hash = parts_.Signatures.Sha256(file);
    return !hash.empty() && std::any_of(kept->Files.begin(), kept->Files.end(), [&](const auto& entry) {
        return entry.Sha256 == hash && (name.empty() ? IsProgramName(entry.Name) : entry.Name == name);
    });
}

// ---- files

bool UpdateSite::Fetch(const std::string& name, const fs::path& file) {
    std::error_code ignored;
    if (!cancelled_ && Load(name, file) && IsGood(name, file)) {
        TakePermissions(file, IsProgramName(name), parts_.Executable);
        return true;
    }
    fs::remove(file, ignored);
    return false;
}

bool UpdateSite::Download(const std::string& name, const fs::path& target) {
    const fs::path part = target.string() + ".part";
    if (!Fetch(name, part)) return false;
    std::error_code error;
    fs::rename(part, target, error);
    if (!error) return true;
    const std::string why = error.message();
    fs::remove(part, error);
    return Refuse(name, UpdateFault::NotSaved, why);
}

bool UpdateSite::Load(const std::string& name, const fs::path& file) {
    if (!IsThere()) return Refuse(name, UpdateFault::NotFound, "there is no update site");
    if (!IsPlainFileName(name))
        return Refuse(name, UpdateFault::NotFound, "no such name can be on the update site");
    if (!configuration_.PublicKey.empty() && !LoadManifest()) return false;
    if (parts_.WebFetch.HtmDownloadFile(configuration_.Site + name, file.parent_path(),
                                        file.filename().string()))
        return true;
    const std::string& status = parts_.WebFetch.State().Status;
    return Refuse(name, FaultOfFetch(), status.empty() ? "could not be fetched" : status);
}

bool UpdateSite::IsGood(const std::string& name, const fs::path& file) {
    if (LengthOf(file) < (IsProgramName(name) ? ShortestProgram : 1))
        return Refuse(name, UpdateFault::WrongLength, "is too short");
    if (!configuration_.PublicKey.empty() && !IsAsSigned(name, file)) return false;
    if (name != LanguageFileName) return true;
    const std::string fault = LanguageFileFault(file, parts_.Settings.Get(Keys::Language));
    return fault.empty() || Refuse(name, UpdateFault::Damaged, fault);
}

UpdateFault UpdateSite::FaultOfFetch() const {
    switch (parts_.WebFetch.State().Failure) {
    case FetchFailure::Missing: return UpdateFault::NotFound;
    case FetchFailure::TooLong: return UpdateFault::WrongLength;
    case FetchFailure::NotSaved: return UpdateFault::NotSaved;
    case FetchFailure::None:
    case FetchFailure::NoAnswer: break;
    }
    return UpdateFault::NoAnswer;
}

} // namespace korvalin
