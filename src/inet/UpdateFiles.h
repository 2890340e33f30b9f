// The files of the program folder that an update is made of.
#pragma once

#include "base/ProgramVersion.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace korvalin {

/// A shorter program is an error page or was cut off.
inline constexpr std::uintmax_t ShortestProgram = 200'000;
inline constexpr const char* ProgramFileName = "Korvalin.exe";
inline constexpr const char* NewProgramFileName = "Korvalin_new.exe";
inline constexpr const char* LanguageFileName = "Korvalin.lng";
inline constexpr const char* NewLanguageFileName = "KorvalinLng_new.lng";
/// What the maker has signed about the new files.
inline constexpr const char* NewManifestFileName = "Korvalin_new.manifest";
/// A new program that could not be started.
inline constexpr const char* FailedProgramFileName = "Korvalin_failed.exe";

/// "Korvalin_V2_3_12.exe": what is kept of the running version.
std::string KeptProgramName(const ProgramVersion& version);
/// The name under which the language file of that version is kept.
std::string KeptLanguageName(const ProgramVersion& version);

/// Whether a new program is later than the current one and long enough to be one. What cannot be found out
/// counts as date 0 and length 0.
bool IsWorthStarting(const std::filesystem::path& newProgram, const std::filesystem::path& program);

/// Whether a file of that name is a program.
bool IsProgramName(std::string_view name);

/// Gives a new file the permissions that the running program has, that of being run only to a program: a
/// download may neither be run nor be read by others.
void TakePermissions(const std::filesystem::path& file, bool isProgram,
                     const std::filesystem::path& runningProgram);

/// Whether the user may run the file.
bool IsExecutable(const std::filesystem::path& file);

} // namespace korvalin
