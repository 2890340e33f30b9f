#pragma once

#include "inet/UpdateManifest.h"
#include "inet/UpdatePage.h"

#include <filesystem>
#include <string>

namespace korvalin {

class Clock;
class Errors;
class Settings;
class Signatures;
class WebFetch;

/// Where updates come from: what a maker sets.
struct UpdateConfiguration {
    /// The folder of all files, ending in "/"; empty where there are no updates.
    std::string Site;
    /// The page that tells people about the versions; may be empty.
    std::string VersionHistoryPage;
    /// The maker's public key (Ed25519, 32 bytes). With one, only what the signed manifest tells of is taken.
    std::string PublicKey;
};

/// Why nothing came from the site.
enum class UpdateFault {
    None,
    NotFound,
    WrongLength,
    NotSigned,
    NotChecked,
    NoAnswer,
    Expired,
    OtherVersion,
    NotSaved,
    Damaged
};

/// The maker's update site.
class UpdateSite {
  public:
    struct Parts {
        korvalin::WebFetch& WebFetch;
        korvalin::Signatures& Signatures;
        korvalin::Settings& Settings;
        korvalin::Errors& Errors;
        korvalin::Clock& Clock;
        /// What is downloaded gets its permissions.
        std::filesystem::path Executable;
        ProgramVersion Version;
    };
    UpdateSite(UpdateConfiguration configuration, Parts parts);

    bool IsThere() const { return !configuration_.Site.empty(); }
    const std::string& VersionHistoryPage() const { return configuration_.VersionHistoryPage; }

    /// Gives up what is being fetched; until Begin nothing more is.
    void Cancel();
    void Begin();
    bool IsCancelled() const { return cancelled_; }

    /// A page of the site; without any text when it could not be read.
    UpdatePage LoadPage(const std::string& name);

    /// Whether only what the maker has signed is taken.
    bool HasKey() const { return !configuration_.PublicKey.empty(); }

    /// Whether the maker tells of a version now; true without a key. False leaves a line in the error log.
    [[nodiscard]] bool LoadManifest();

    /// What a page offers with the file that the maker has signed for it; just the offer without a key.
    /// nullopt, with a line in the error log, when something else is signed. To offer nothing new is right
    /// only where nothing new is signed.
    std::optional<UpdateOffer> Signed(const UpdateOffer& offered, UpdatePage::Channel channel);

    /// Fetches a file to `file`, where it is kept only when it is whole, what the manifest tells of, and, for
    /// a language file, one that the program can use. False leaves a line in the error log.
    [[nodiscard]] bool Fetch(const std::string& name, const std::filesystem::path& file);

    /// Fetches a file beside and puts it in place; false leaves `target` as it was.
    [[nodiscard]] bool Download(const std::string& name, const std::filesystem::path& target);

    /// Of the last call that returned false.
    UpdateFault Fault() const { return fault_; }

    /// The manifest as it was read; empty without one.
    const std::string& ManifestText() const { return manifestText_; }

    /// Whether the files of an earlier download are a program and its language file as the manifest kept with
    /// them has them; a manifest that has expired since will do. True without a key.
    [[nodiscard]] bool IsSignedUpdate(const std::filesystem::path& program,
                                      const std::filesystem::path& languageFile,
                                      const std::filesystem::path& manifest);

  private:
    bool Refuse(const std::string& name, UpdateFault fault, const std::string& why);
    bool IsCurrent(const UpdateManifest& manifest);
    bool IsOutdated(const UpdateManifest& manifest) const;
    bool Matches(const UpdateManifest& manifest, const std::string& name, const std::filesystem::path& file);
    bool Load(const std::string& name, const std::filesystem::path& file);
    bool IsGood(const std::string& name, const std::filesystem::path& file);
    UpdateFault FaultOfFetch() const;

    UpdateConfiguration configuration_;
    Parts parts_;
    std::string manifestText_;
    std::optional<UpdateManifest> manifest_;
    UpdateFault fault_ = UpdateFault::None;
    bool cancelled_ = false;
};

} // namespace korvalin
