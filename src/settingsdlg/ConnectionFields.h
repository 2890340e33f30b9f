#pragma once

#include <array>
#include <string>

namespace korvalin {

class Internet;
class Language;

/// What the machine's connection is like now: internet via LAN, via RAS, via proxy, online, RAS installed,
/// each as the language's word for true or false; last a description of several lines.
std::array<std::string, 6> ConnectionFields(Internet& internet, Language& language);

} // namespace korvalin
