#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace korvalin {

class Errors;
class Files;
class MessageBoxes;
class Settings;
class Shell;
struct LanguageEntry;

/// Which text of a number is wanted, and how.
struct LngOptions {
    bool Tooltip = false; ///< the control's tooltip instead of its caption
    bool TrimIt = false;  ///< without blanks at its ends
    /// A missing text is "text not found", and noted in the error log, once however often it is asked for.
    bool ReportMissing = false;
};

/// What Lng gives for a missing text whose absence is to be reported.
inline constexpr std::string_view TextNotFound = "text not found";

/// The user-visible texts of the chosen language, by section and number.
class Language {
  public:
    /// Shows the language dialog and returns when it is closed.
    using AskLanguage = std::function<void()>;

    struct Parts {
        korvalin::Settings& Settings;
        korvalin::Errors& Errors;
        korvalin::Files& Files;
        korvalin::MessageBoxes& MessageBoxes;
        korvalin::Shell& Shell;
    };

    Language(const Parts& parts, const std::filesystem::path& programFolder);

    /// Until a dialog is plugged in, nobody is asked and the default language serves.
    void PlugAskLanguage(AskLanguage ask);

    /// The file beside the program, where updates put it; where there is none but the program is installed on
    /// a system, that of its data folder, ../share/korvalin.
    std::filesystem::path LanguageFilePath() const;

    /// Text of a section by number (or, in "lngDefinition", by language code); a missing one is "".
    std::string Lng(std::string_view section, std::string_view number, LngOptions options = {});
    std::string Lng(std::string_view section, int number, LngOptions options = {});

    /// Fills LanguageCodes from the file. False when the file is missing or cannot be read.
    bool LoadLanguageChoices();

    /// Fills the text table for LanguageCode; true when at least one text was stored.
    bool LoadLanguageTexts();

    /// Chooses the language and loads its texts at start; a failure has been shown to the user.
    bool InitProgramTexts();

    /// The stored code, or the one that the user chooses now.
    std::string GetLanguageCode();
    /// Stores the code of the language ("ENG") that the user has chosen.
    void SetLanguageCode(std::string_view code);
    /// The code of the language that the system speaks, "ENG" for those without texts.
    std::string UserDefaultLanguageCode() const;

    /// The language names in the file's order and the index (from 0) of the one to preselect.
    struct Choices {
        std::vector<std::string> Names;
        std::size_t Selected = 0;
    };
    Choices FillLanguageChoices();

    /// Takes over a choice of FillLanguageChoices: stores it and reloads the texts. False when nothing
    /// changed.
    bool ChooseLanguage(std::string_view entry);

    /// Loads the texts of a language of the file without storing the choice; false when there are none.
    bool UseLanguage(std::string_view code);

    /// Three letters; "LNG" while only the language names are loaded, empty before that.
    const std::string& LanguageCode() const;
    /// The codes of the languages that the file has texts of, in its order.
    const std::vector<std::string>& LanguageCodes() const;

    /// Number after "#LngNo:" in a window element's mark; -1 for "-", 0 when there is none.
    static int ParseLngNo(std::string_view tag);

  private:
    /// Faults of the file met while it is loaded, written to the log afterwards.
    struct FileFaults;
    /// First text with an access key, by section and key.
    using AccessKeys = std::unordered_map<std::string, std::string>;

    template <typename Work>
    bool Guarded(std::string_view procName, const Work& work);
    void ShowLanguageError(std::string_view procName, const std::exception& error);
    bool IsKnown(std::string_view code) const;
    bool HasLanguage() const;
    bool Wants(const LanguageEntry& entry) const;
    std::size_t StoreEntry(const LanguageEntry& entry, AccessKeys& accessKeys, FileFaults& faults);
    void WriteFaults(const FileFaults& faults);
    std::string MissingText(std::string_view section, std::string_view number, std::string key, char kind,
                            bool reportMissing);
    std::string NameLanguage(std::string_view code, std::string key);
    void AppendToFile(std::string_view line);
    bool ShowTextsMissing();

    Parts parts_;
    std::filesystem::path programFolder_;
    AskLanguage ask_;
    std::unordered_map<std::string, std::string> texts_;
    std::unordered_set<std::string> reported_;
    std::string languageCode_;
    std::vector<std::string> languageCodes_;
};

} // namespace korvalin
