#pragma once

#include "base/Locale.h"

class QLocale;

namespace korvalin {

/// The user's regional formats as the toolkit knows them; years get four digits.
Locale ReadQtLocale(const QLocale& locale);

} // namespace korvalin
