#include "lang/Language.h"

#include "base/Numbers.h"
#include "base/Paths.h"
#include "base/ProgramTitle.h"
#include "base/Text.h"
#include "errors/Errors.h"
#include "lang/LanguageFile.h"
#include "platform/Files.h"
#include "platform/MessageBoxes.h"
#include "platform/Shell.h"
#include "settings/Settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <limits>

namespace korvalin {
namespace {

constexpr const char* fileName = "Korvalin.lng";
constexpr std::string_view defaultLanguage = "GER";
constexpr std::string_view fileGroup = "language file";
constexpr std::size_t codeLength = 3;
// Far above any real file: a damaged one shall neither fill the log nor the list.
constexpr std::size_t mostLoggedFaults = 500;
constexpr std::size_t mostLanguages = 100;

std::string Key(std::string_view section, std::string_view number, char kind) {
    std::string key;
    key.reserve(section.size() + number.size() + 1);
    key.append(section).append(number).push_back(kind);
    return ToLower(key);
}

// The character after the first "&", empty when there is none.
std::string_view AccessKey(std::string_view text) {
    const auto mark = text.find('&');
    return mark == std::string_view::npos ? std::string_view() : FirstCharacters(text.substr(mark + 1), 1);
}

bool EndsWithinLine(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return file.seekg(-1, std::ios::end) && file.get() != '\n';
}

// Their pages are not seen together, and have more texts than there are letters; a test compares each page's.
bool HasPages(std::string_view section) {
    return section == "frmEinstellungenObj" || section == "frmStatistikObj";
}

} // namespace

struct Language::FileFaults {
    struct Fault {
        std::string Message;
        std::string_view Group;
    };
    std::vector<Fault> List;

    void Add(std::string message, std::string_view group) {
        if (List.size() < mostLoggedFaults) List.push_back({std::move(message), group});
    }
};

Language::Language(const Parts& parts, const std::filesystem::path& programFolder)
    : parts_(parts), programFolder_(programFolder), ask_([] {}) {}

void Language::PlugAskLanguage(AskLanguage ask) {
    ask_ = std::move(ask);
}

std::filesystem::path Language::LanguageFilePath() const {
    const std::filesystem::path beside = programFolder_ / fileName;
    const std::filesystem::path shared = programFolder_.parent_path() / "share" / "korvalin" / fileName;
    return !IsFileNotFolder(beside) && IsFileNotFolder(shared) ? shared : beside;
}

const std::string& Language::LanguageCode() const {
    return languageCode_;
}

const std::vector<std::string>& Language::LanguageCodes() const {
    return languageCodes_;
}

template <typename Work>
bool Language::Guarded(std::string_view procName, const Work& work) {
    try {
        return work();
    } catch (const std::exception& error) {
        ShowLanguageError(procName, error);
        return false;
    }
}

// ---- looking texts up

std::string Language::Lng(std::string_view section, std::string_view number, LngOptions options) {
    const std::string normalized = NormalizeTextNumber(number);
    const char kind = options.Tooltip ? 'T' : 'C';
    std::string key = Key(section, normalized, kind);
    const auto found = texts_.find(key);
    const std::string text =
        found != texts_.end() ? found->second
                              : MissingText(section, normalized, std::move(key), kind, options.ReportMissing);
    return options.TrimIt ? std::string(Trim(text)) : text;
}

std::string Language::Lng(std::string_view section, int number, LngOptions options) {
    return Lng(section, std::to_string(number), options);
}

std::string Language::MissingText(std::string_view section, std::string_view number, std::string key,
                                  char kind, bool reportMissing) {
    if (EqualsNoCase(section, LanguageNamesSection)) return NameLanguage(number, std::move(key));
    if (!reportMissing) return {};
    if (reported_.insert(std::move(key)).second) {
        parts_.Errors.WriteErrorLog(fmt::format("{} {} {}{}", TextNotFound, section, number, kind),
                                    "language " + languageCode_);
    }
    return std::string(TextNotFound);
}

// A language without a display name gets one, which stays in the file from then on.
std::string Language::NameLanguage(std::string_view code, std::string key) {
    std::string name = fmt::format("{} - language", code);
    const bool belongsInFile = key.ends_with('c') && CharacterCount(code) == codeLength;
    texts_.emplace(std::move(key), name);
    if (belongsInFile)
        AppendToFile(fmt::format("{}\t{}\t{}\t{}\r\n", EveryLanguage, LanguageNamesSection, code, name));
    return name;
}

void Language::AppendToFile(std::string_view line) {
    const std::filesystem::path file = LanguageFilePath();
    // A file created here would hold this one line and hide that the real one is missing.
    if (!IsFileNotFolder(file)) return;
    const std::string lineBreak = EndsWithinLine(file) ? "\r\n" : "";
    // The program folder is often read-only for the user; the name is then made anew in every run.
    static_cast<void>(parts_.Files.Append(file, lineBreak + std::string(line)));
}

// ---- loading

bool Language::Wants(const LanguageEntry& entry) const {
    if (entry.Code == EveryLanguage) return true;
    return entry.Code == languageCode_ && !EqualsNoCase(entry.Section, LanguageNamesSection);
}

bool Language::LoadLanguageTexts() {
    return Guarded("LoadLanguageTexts", [this] {
        texts_.clear();
        reported_.clear();
        if (!IsFileNotFolder(LanguageFilePath())) return false;
        AccessKeys accessKeys;
        FileFaults faults;
        std::size_t count = 0;
        LanguageLines lines(LanguageFilePath());
        while (const auto line = lines.Next()) {
            const auto entry = SplitLanguageLine(*line);
            if (entry && Wants(*entry)) count += StoreEntry(*entry, accessKeys, faults);
        }
        WriteFaults(faults);
        return count > 0;
    });
}

// The first occurrence of a text wins. Returns how many of the two texts were stored.
std::size_t Language::StoreEntry(const LanguageEntry& entry, AccessKeys& accessKeys, FileFaults& faults) {
    const auto store = [&](std::string_view text, char kind) {
        if (texts_.try_emplace(Key(entry.Section, entry.Number, kind), text).second) return true;
        faults.Add(fmt::format("double entry: {} {}", entry.Section, entry.Number), fileGroup);
        return false;
    };
    const bool textStored = store(entry.Text, 'C');
    const std::string_view accessKey = AccessKey(entry.Text);
    if (textStored && !accessKey.empty() && !HasPages(entry.Section)) {
        const auto [first, isNew] =
            accessKeys.try_emplace(ToLower(fmt::format("{}\t{}", entry.Section, accessKey)), entry.Text);
        if (!isNew) {
            faults.Add(
                fmt::format("Double shortkey in {}: {} and {}", entry.Section, entry.Text, first->second),
                "text file");
        }
    }
    return (textStored ? 1U : 0U) + (store(entry.Tooltip, 'T') ? 1U : 0U);
}

// Only after loading: the log asks for the data folder, and that may need texts.
void Language::WriteFaults(const FileFaults& faults) {
    for (const auto& fault : faults.List)
        parts_.Errors.WriteErrorLog(fault.Message, fault.Group);
    if (faults.List.size() == mostLoggedFaults)
        parts_.Errors.WriteErrorLog("further faults not listed", fileGroup);
}

bool Language::IsKnown(std::string_view code) const {
    return std::find(languageCodes_.begin(), languageCodes_.end(), code) != languageCodes_.end();
}

bool Language::HasLanguage() const {
    return !languageCode_.empty() && languageCode_ != EveryLanguage;
}

bool Language::LoadLanguageChoices() {
    languageCodes_.clear();
    const bool loaded = Guarded("LoadLanguageChoices", [this] {
        if (!IsFileNotFolder(LanguageFilePath())) return false;
        LanguageLines lines(LanguageFilePath());
        while (languageCodes_.size() < mostLanguages) {
            const auto line = lines.Next();
            if (!line) break;
            const std::string_view code = CodeOfLanguageLine(*line);
            if (!code.empty() && !IsKnown(code)) languageCodes_.emplace_back(code);
        }
        return true;
    });
    if (languageCodes_.empty()) languageCodes_.emplace_back(defaultLanguage);
    return loaded;
}

// ---- choosing

bool Language::InitProgramTexts() {
    return Guarded("InitProgramTexts", [this] {
        // A second try reads the list anew: the file may have been replaced since.
        languageCodes_.clear();
        languageCode_.clear();
        languageCode_ = GetLanguageCode();
        if (LoadLanguageChoices() && !IsKnown(languageCode_)) {
            languageCode_ = defaultLanguage;
            SetLanguageCode(languageCode_);
        }
        return LoadLanguageTexts() || ShowTextsMissing();
    });
}

bool Language::ShowTextsMissing() {
    const std::string problem =
        fmt::format("Language file {} could not be found or is incomplete for language {}. ",
                    LanguageFilePath().string(), languageCode_);
    const std::string title(ProgramTitle);
    if (languageCode_ == defaultLanguage) {
        parts_.MessageBoxes.Show(problem + "Program can not be run. Contact software vendor.", title,
                                 MessageIcon::Critical, MessageButtons::Ok);
    } else {
        parts_.MessageBoxes.Show(problem + "Program will be set to default language GER. Try again.", title,
                                 MessageIcon::Warning, MessageButtons::Ok);
        SetLanguageCode(defaultLanguage);
    }
    return false;
}

std::string Language::GetLanguageCode() {
    const std::string stored = parts_.Settings.Get(Keys::Language);
    if (CharacterCount(stored) == codeLength) return stored;
    ask_();
    return HasLanguage() ? languageCode_ : std::string(defaultLanguage);
}

void Language::SetLanguageCode(std::string_view code) {
    parts_.Settings.Set(Keys::Language, std::string(code));
}

std::string Language::UserDefaultLanguageCode() const {
    return parts_.Shell.UserLanguage() == "de" ? "GER" : "ENG";
}

Language::Choices Language::FillLanguageChoices() {
    std::string preselected = languageCode_;
    if (languageCodes_.empty()) {
        LoadLanguageChoices();
        languageCode_ = EveryLanguage;
        LoadLanguageTexts();
        preselected = UserDefaultLanguageCode();
    }
    Choices choices;
    for (const std::string& code : languageCodes_)
        choices.Names.push_back(Lng(LanguageNamesSection, code));
    const auto selected =
        std::find_if(choices.Names.begin(), choices.Names.end(), [&](const std::string& name) {
            return FirstCharacters(name, codeLength) == preselected;
        });
    if (selected != choices.Names.end()) {
        choices.Selected = static_cast<std::size_t>(selected - choices.Names.begin());
    }
    return choices;
}

bool Language::ChooseLanguage(std::string_view entry) {
    const std::string_view code = FirstCharacters(entry, codeLength);
    if (code == languageCode_ || !UseLanguage(code)) return false;
    SetLanguageCode(languageCode_);
    return true;
}

bool Language::UseLanguage(std::string_view code) {
    if (!IsKnown(code)) return false;
    languageCode_ = code;
    return LoadLanguageTexts();
}

int Language::ParseLngNo(std::string_view tag) {
    constexpr std::string_view mark = "#LngNo:";
    const auto at = tag.find(mark);
    if (at == std::string_view::npos) return 0;
    const std::string_view rest = Trim(tag.substr(at + mark.size()));
    const std::string_view digits = Trim(rest.substr(rest.starts_with('-') || rest.starts_with('+') ? 1 : 0));
    int number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec == std::errc::result_out_of_range) return std::numeric_limits<int>::max();
    if (number > 0) return number;
    return rest == "-" ? -1 : 0;
}

// ---- errors of this module

// A plain box: the program's own error report needs the texts that are just failing.
void Language::ShowLanguageError(std::string_view procName, const std::exception& error) {
    parts_.MessageBoxes.Show(fmt::format("{}, {}, {}", procName, ErrorNumber(error), error.what()),
                             std::string(ProgramTitle), MessageIcon::Critical, MessageButtons::Ok);
}

} // namespace korvalin
