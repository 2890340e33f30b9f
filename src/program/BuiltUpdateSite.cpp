#include "program/BuiltUpdateSite.h"

#include "inet/WebAddress.h"
#include "program/UpdateConfiguration.h"

#include <cstdlib>

namespace korvalin {

UpdateConfiguration BuiltUpdateSite(AddressReader& reader) {
    UpdateConfiguration built{UpdateSiteAddress, VersionHistoryAddress,
                              BytesOfHex(UpdatePublicKey).value_or("")};
    const char* local = std::getenv("KORVALIN_UPDATE_SITE");
    if (local != nullptr && std::string_view(local).ends_with('/') && IsLoopbackAddress(reader, local)) {
        built.Site = local;
        built.VersionHistoryPage = built.Site + "versions.html";
        // It may only ask for more: the key of the build stays.
        const char* key = std::getenv("KORVALIN_UPDATE_KEY");
        if (key != nullptr && built.PublicKey.empty()) built.PublicKey = BytesOfHex(key).value_or("no key");
    }
    return built;
}

} // namespace korvalin
