#pragma once

#include "inet/UpdatePage.h"

#include <filesystem>
#include <string>

namespace korvalin {

class Errors;
class Signatures;
class WebFetch;

/// Where updates come from: what a maker sets.
struct UpdateConfiguration {
    /// The folder of all files, ending in "/"; empty where there are no updates.
    std::string Site;
    /// The page that tells people about the versions; may be empty.
    std::string VersionHistoryPage;
    /// The maker's public key (Ed25519, 32 bytes). With one, only files with a signature beside them are
    /// taken.
    std::string PublicKey;
};

/// The maker's update site.
class UpdateSite {
  public:
    /// What is downloaded gets the permissions of `executable`.
    UpdateSite(UpdateConfiguration configuration, const std::filesystem::path& executable, WebFetch& fetch,
               Signatures& signatures, Errors& errors);

    bool IsThere() const { return !configuration_.Site.empty(); }
    const std::string& VersionHistoryPage() const { return configuration_.VersionHistoryPage; }

    /// Gives up what is being fetched; until Begin nothing more is.
    void Cancel();
    void Begin() { cancelled_ = false; }
    bool IsCancelled() const { return cancelled_; }

    /// A page of the site; without any text when it could not be read.
    UpdatePage LoadPage(const std::string& name);

    /// Fetches a file and puts it in place when it is whole, long enough and, where there is a key, signed.
    /// False, with a line in the error log, leaves `target` as it was.
    [[nodiscard]] bool Download(const std::string& name, const std::filesystem::path& target);

    /// Whether a file that is already here is the one that the site has signed; true without a key.
    [[nodiscard]] bool IsSigned(const std::filesystem::path& file, const std::string& name);

  private:
    std::string Fetch(const std::string& name, const std::filesystem::path& file);

    UpdateConfiguration configuration_;
    std::filesystem::path executable_;
    WebFetch& fetch_;
    Signatures& signatures_;
    Errors& errors_;
    bool cancelled_ = false;
};

} // namespace korvalin
