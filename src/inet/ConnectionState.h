#pragma once

#include "platform/Internet.h"

#include <string>

namespace korvalin {

class Language;

// Each asks the system anew and returns one flag of its answer.
bool IsInternetViaModem(Internet& internet);
/// Whether the default route leads over an adapter.
bool IsInternetViaLan(Internet& internet);
/// Whether the system names a proxy.
bool IsInternetViaProxy(Internet& internet);
/// Whether lines can be dialed on this system.
bool IsRasInstalled(Internet& internet);
/// Whether any connection to the internet is there.
bool IsOnline(Internet& internet);

/// A description of the connection state, one line per fact.
std::string ConnectionInfoText(Internet& internet, Language& language);

} // namespace korvalin
