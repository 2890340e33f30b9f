#pragma once

#include "settingsdlg/TextTable.h"

namespace korvalin {

class Language;
class NetworkTables;
struct Locale;

/// Width of the adapter table's first column in twips.
inline constexpr int AdapterCaptionColumnTwips = 2500;

/// What the system tells of its network adapters now: a row for each field, the first column with the fields'
/// captions, then a column for each adapter. When the system cannot tell, the captions alone.
TextTable BuildAdapterTable(NetworkTables& network, Language& language, const Locale& locale);

} // namespace korvalin
