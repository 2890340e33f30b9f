#pragma once

#include "platform/Internet.h"

#include <string>

namespace korvalin {

class Language;

// Each asks the system anew and returns one flag of its answer.
bool IsInternetViaModem(Internet& internet);
bool IsInternetViaLan(Internet& internet);
bool IsInternetViaProxy(Internet& internet);
bool IsRasInstalled(Internet& internet);
bool IsOnline(Internet& internet);

/// A description of the connection state, one line per fact.
std::string ConnectionInfoText(Internet& internet, Language& language);

} // namespace korvalin
