#pragma once

#include <string_view>

namespace korvalin {

/// The statistics file in the data folder. Its backups have this name, "_" and the moment they were made.
inline constexpr std::string_view StatFileName = "Korvalin_Stats.db";

} // namespace korvalin
