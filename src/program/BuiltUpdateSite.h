#pragma once

#include "inet/UpdateSite.h"

namespace korvalin {

class AddressReader;

/// The update site that the program was built with. The environment variable KORVALIN_UPDATE_SITE replaces it
/// by one on this machine, for trying updates out; any other address in it is ignored.
/// With it KORVALIN_UPDATE_KEY brings a key where the build has none.
UpdateConfiguration BuiltUpdateSite(AddressReader& reader);

} // namespace korvalin
