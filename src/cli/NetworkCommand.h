#pragma once

namespace korvalin {

class Language;
class NetworkTables;
struct Locale;

/// Prints the tables of network adapters and IP addresses, as a window shows them or as one JSON object of
/// two lists, an object for each adapter or address.
void PrintNetwork(NetworkTables& network, Language& language, const Locale& locale, bool asJson);

} // namespace korvalin
