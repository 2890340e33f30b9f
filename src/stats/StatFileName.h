#pragma once

#include <string_view>

namespace korvalin {

/// The statistics file in the data folder. Its backups have this name, "_" and the moment they were made.
inline constexpr std::string_view StatFileName = "Korvalin_Stats.db";
/// The file of older releases, converted once.
inline constexpr std::string_view OldStatFileName = "Korvalin_Stats.txt";
/// A copy of every record for other programs.
inline constexpr std::string_view StatExportName = "Korvalin_Stats.csv";

} // namespace korvalin
