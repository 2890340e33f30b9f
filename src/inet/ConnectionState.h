#pragma once

#include "platform/Internet.h"

#include <functional>
#include <string>

namespace korvalin {

// Each asks the system anew and returns one flag of its answer.
bool IsInternetViaModem(Internet& internet);
bool IsInternetViaLan(Internet& internet);
bool IsInternetViaProxy(Internet& internet);
bool IsRasInstalled(Internet& internet);
bool IsOnline(Internet& internet);

/// A description of the connection state, one line per fact; `text` looks up section "modConnInfo" by number.
std::string ConnectionInfoText(Internet& internet, const std::function<std::string(int number)>& text);

} // namespace korvalin
