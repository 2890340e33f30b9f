#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace korvalin {

class Errors;
class Files;
class MessageBoxes;
class Settings;
class Shell;

/// The user-visible texts of the chosen language, by section and number.
class Language {
  public:
    /// Shows the language dialog and returns when it is closed.
    using AskLanguage = std::function<void()>;

    Language(const std::filesystem::path& programFolder, Settings& settings, Errors& errors, Files& files,
             MessageBoxes& messageBoxes, Shell& shell);

    void PlugAskLanguage(AskLanguage ask);

    std::filesystem::path LanguageFilePath() const;

    /// Text of a section by number (or, in "lngDefinition", by language code). A missing text is "", or with
    /// `reportMissing` "text not found" and a line in the error log.
    std::string Lng(std::string_view section, std::string_view number, bool tooltip = false, bool trimIt = false,
                    bool reportMissing = false);
    std::string Lng(std::string_view section, int number, bool tooltip = false, bool trimIt = false,
                    bool reportMissing = false);

    bool LoadLanguageChoices();
    bool LoadLanguageTexts();
    bool InitProgramTexts();

    /// The stored code, or the one that the user chooses now.
    std::string GetLanguageCode();
    void SetLanguageCode(std::string_view code);
    std::string UserDefaultLanguageCode() const;

    /// The language names in the file's order and the index (from 0) of the one to preselect.
    struct Choices {
        std::vector<std::string> Names;
        std::size_t Selected = 0;
    };
    Choices FillLanguageChoices();

    /// Takes over a choice of FillLanguageChoices: stores it and reloads the texts. False when nothing changed.
    bool ChooseLanguage(std::string_view entry);

    const std::string& LanguageCode() const;
    const std::vector<std::string>& LanguageCodes() const;

    /// Number after "#LngNo:" in a window element's mark; -1 for "-", 0 when there is none.
    static int ParseLngNo(std::string_view tag);
};

} // namespace korvalin
