#pragma once

#include "base/Locale.h"

class QLocale;

namespace korvalin {

/// The user's regional formats as the toolkit knows them. Years get four digits, times get seconds.
Locale ReadQtLocale(const QLocale& locale);

} // namespace korvalin
