#pragma once

#include <string>

namespace korvalin {

class Settings;

/// Prints every setting that is stored or has a default, as it is read: name, kind, value.
void ListSettings(Settings& settings);

/// Prints one setting as it is read.
void PrintSetting(Settings& settings, const std::string& name);

/// Stores a value in its corrected form and prints that; an empty text deletes the setting.
void StoreSetting(Settings& settings, const std::string& name, const std::string& value);

} // namespace korvalin
