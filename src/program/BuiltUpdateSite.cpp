#include "program/BuiltUpdateSite.h"

#include "inet/WebAddress.h"
#include "program/UpdateConfiguration.h"

#include <charconv>
#include <cstdlib>

namespace korvalin {
namespace {

// The build has made sure that these are hexadecimal digits.
std::string FromHex(std::string_view digits) {
    std::string bytes;
    for (; digits.size() >= 2; digits.remove_prefix(2)) {
        unsigned value = 0;
        std::from_chars(digits.data(), digits.data() + 2, value, 16);
        bytes += static_cast<char>(value);
    }
    return bytes;
}

} // namespace

UpdateConfiguration BuiltUpdateSite() {
    UpdateConfiguration built{UpdateSiteAddress, VersionHistoryAddress, FromHex(UpdatePublicKey)};
    const char* local = std::getenv("KORVALIN_UPDATE_SITE");
    if (local != nullptr && IsLoopbackAddress(local) && std::string_view(local).ends_with('/')) {
        built.Site = local;
        built.VersionHistoryPage = built.Site + "versions.html";
    }
    return built;
}

} // namespace korvalin
