#include "inet/UpdateSite.h"

#include "errors/Errors.h"
#include "inet/UpdateFiles.h"
#include "inet/WebAddress.h"
#include "inet/WebFetch.h"
#include "platform/Signatures.h"

#include <fstream>
#include <iterator>
#include <system_error>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool IsLongEnough(const fs::path& file, const std::string& name) {
    std::error_code error;
    const auto length = fs::file_size(file, error);
    return !error && length >= (IsProgramName(name) ? ShortestProgram : 1);
}

} // namespace

UpdateSite::UpdateSite(UpdateConfiguration configuration, const fs::path& executable, WebFetch& fetch,
                       Signatures& signatures, Errors& errors)
    : configuration_(std::move(configuration)),
      executable_(executable),
      fetch_(fetch),
      signatures_(signatures),
      errors_(errors) {}

UpdatePage UpdateSite::LoadPage(const std::string& name) {
    return cancelled_ ? UpdatePage() : UpdatePage(fetch_.HtmLoadPage(configuration_.Site + name));
}

void UpdateSite::Cancel() {
    cancelled_ = true;
    fetch_.Cancel();
}

bool UpdateSite::Download(const std::string& name, const fs::path& target) {
    if (cancelled_) return false;
    const fs::path part = target.string() + ".part";
    std::string fault = Fetch(name, part);
    std::error_code error;
    if (fault.empty()) {
        fs::rename(part, target, error);
        fault = error ? error.message() : std::string();
    }
    if (fault.empty()) {
        TakePermissions(target, executable_);
        return true;
    }
    fs::remove(part, error);
    errors_.WriteErrorLog(name + ": " + fault, "Update");
    return false;
}

// Empty when the file is here and good.
std::string UpdateSite::Fetch(const std::string& name, const fs::path& file) {
    if (!IsThere()) return "there is no update site";
    if (!IsPlainFileName(name)) return "no such name can be on the update site";
    if (!fetch_.HtmDownloadFile(configuration_.Site + name, file.parent_path(), file.filename().string())) {
        const std::string& status = fetch_.State().Status;
        return status.empty() ? "could not be fetched" : status;
    }
    if (!IsLongEnough(file, name)) return "is too short";
    return IsSigned(file, name) ? "" : "is not signed by the maker";
}

bool UpdateSite::IsSigned(const fs::path& file, const std::string& name) {
    if (configuration_.PublicKey.empty()) return true;
    const UpdatePage signature = LoadPage(name + ".sig");
    return signatures_.IsValid(ReadFile(file), signature.Text(), configuration_.PublicKey);
}

} // namespace korvalin
