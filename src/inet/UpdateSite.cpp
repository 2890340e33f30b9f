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
#include <array>
#include <fstream>
#include <iterator>
#include <system_error>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

constexpr const char* manifestName = "update.manifest";
constexpr std::uintmax_t longestManifest = 64 * 1024;
constexpr std::array allChannels = {UpdatePage::Channel::Automatic, UpdatePage::Channel::OnDemand};

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

std::optional<UpdateOffer> UpdateSite::Signed(const UpdateOffer& offered, UpdatePage::Channel channel) {
    if (!HasKey()) return offered;
    if (!LoadManifest()) return std::nullopt;
    const UpdateOffer& signedOne = manifest_->Of(channel);
    const bool nothingNew =
        !IsNewer(signedOne.Version, parts_.Version) && !IsNewer(offered.Version, parts_.Version);
    if (nothingNew || signedOne.Version.Numbers() == offered.Version.Numbers()) return signedOne;
    Refuse(manifestName, UpdateFault::OtherVersion,
           "signed is " + signedOne.Version.Numbers() + ", offered " + offered.Version.Numbers());
    return std::nullopt;
}

bool UpdateSite::LoadManifest() {
    if (!HasKey() || manifest_) return true;
    manifestText_ = LoadPage(manifestName).Text();
    if (manifestText_.empty()) return Refuse(manifestName, FaultOfFetch(), parts_.WebFetch.State().Status);
    if (!parts_.Signatures.CanCheck())
        return Refuse(manifestName, UpdateFault::NotChecked, "cannot be checked without libsodium");
    const auto manifest = ReadManifest(manifestText_, parts_.Signatures, configuration_.PublicKey);
    if (!manifest) return Refuse(manifestName, UpdateFault::NotSigned, "is not signed by the maker");
    if (!IsCurrent(*manifest)) return false;
    manifest_ = manifest;
    return true;
}

// A signature alone stays good for ever: an old one must neither bring an old version back nor keep a new one
// away.
bool UpdateSite::IsCurrent(const UpdateManifest& manifest) {
    if (manifest.Expires <= parts_.Clock.Now())
        return Refuse(manifestName, UpdateFault::Expired, "has expired");
    return !IsOutdated(manifest) ||
           Refuse(manifestName, UpdateFault::OtherVersion,
                  "is about " + manifest.OnDemand.Version.Numbers() + ", an older version");
}

bool UpdateSite::IsOutdated(const UpdateManifest& manifest) const {
    return IsNewer(parts_.Version, manifest.OnDemand.Version) &&
           IsNewer(parts_.Version, manifest.Automatic.Version);
}

bool UpdateSite::Matches(const UpdateManifest& manifest, const std::string& name, const fs::path& file) {
    const UpdateManifest::File* const entry = manifest.Find(name);
    return entry != nullptr && entry->Bytes == LengthOf(file) &&
           entry->Sha256 == parts_.Signatures.Sha256(file);
}

bool UpdateSite::IsSignedUpdate(const fs::path& program, const fs::path& languageFile,
                                const fs::path& manifest) {
    if (!HasKey()) return true;
    if (LengthOf(manifest) > longestManifest) return false;
    const auto kept = ReadManifest(ReadFile(manifest), parts_.Signatures, configuration_.PublicKey);
    if (!kept || !Matches(*kept, LanguageFileName, languageFile)) return false;
    return std::any_of(allChannels.begin(), allChannels.end(), [&](UpdatePage::Channel channel) {
        const UpdateOffer& offer = kept->Of(channel);
        return !IsNewer(parts_.Version, offer.Version) && Matches(*kept, offer.FileName, program);
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
    if (!LoadManifest()) return false;
    if (HasKey() && manifest_->Find(name) == nullptr)
        return Refuse(name, UpdateFault::NotSigned, "is not signed by the maker");
    if (parts_.WebFetch.HtmDownloadFile(configuration_.Site + name, file.parent_path(),
                                        file.filename().string()))
        return true;
    const std::string& status = parts_.WebFetch.State().Status;
    return Refuse(name, FaultOfFetch(), status.empty() ? "could not be fetched" : status);
}

bool UpdateSite::IsGood(const std::string& name, const fs::path& file) {
    if (LengthOf(file) < (IsProgramName(name) ? ShortestProgram : 1))
        return Refuse(name, UpdateFault::WrongLength, "is too short");
    if (HasKey() && !Matches(*manifest_, name, file))
        return Refuse(name, UpdateFault::Damaged, "is not the file that the maker has signed");
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
