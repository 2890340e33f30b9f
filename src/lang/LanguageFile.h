// The file that holds the texts of all languages: one entry per line, fields separated by TABs.
#pragma once

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

namespace korvalin {

/// Fields of one line; they point into the line that was split.
struct LanguageEntry {
    std::string_view Code;
    std::string_view Section;
    std::string Number;
    std::string_view Text;
    std::string_view Tooltip;
};

/// Code of entries that belong to every language.
inline constexpr std::string_view EveryLanguage = "LNG";

/// Section of the languages' own names.
inline constexpr std::string_view LanguageNamesSection = "lngDefinition";

/// The lines of the file. Whatever it holds, memory stays small: lines beyond 64 KB and lines with zero bytes
/// are no text and are left out, and reading ends after 4 MB.
class LanguageLines {
  public:
    /// Throws when the file cannot be opened.
    explicit LanguageLines(const std::filesystem::path& file);

    /// The next line after the header, as UTF-8 and without its line end; nullopt at the end. Throws when the
    /// file cannot be read.
    std::optional<std::string> Next();

  private:
    std::optional<std::string_view> ReadLine();

    std::ifstream file_;
    std::string buffer_;
    std::streamsize bytes_ = 0;
    bool header_ = true;
};

/// What keeps a file from being used as the program's, in words: a language that it names, or the user's
/// (`code`, empty when there is none yet), has hardly any texts. Empty for a good file.
std::string LanguageFileFault(const std::filesystem::path& file, std::string_view code);

/// Splits a line into its fields; nullopt when the section or number is missing or the number too long.
std::optional<LanguageEntry> SplitLanguageLine(std::string_view line);

/// The language code at the start of a line; empty when there is none of three characters, or none of one
/// language.
std::string_view CodeOfLanguageLine(std::string_view line);

/// A numeric text number with at least three digits ("5" gives "005"); any other key as it is.
std::string NormalizeTextNumber(std::string_view number);

} // namespace korvalin
