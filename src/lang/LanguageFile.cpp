#include "lang/LanguageFile.h"

#include "base/Numbers.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <cerrno>
#include <limits>
#include <map>
#include <system_error>
#include <utility>

namespace korvalin {
namespace {

constexpr std::streamsize longestLine = 64 * 1024;
constexpr std::streamsize largestFile = 4 * 1024 * 1024;
constexpr std::size_t fieldCount = 5;
constexpr std::size_t longestNumber = 3;
constexpr std::size_t codeLength = 3;

// Of the 300 of a language; a file with fewer was cut off or is another one.
constexpr std::size_t fewestTexts = 200;

std::string_view WithoutQuotes(std::string_view text) {
    if (text.starts_with('"')) text.remove_prefix(1);
    if (text.ends_with('"')) text.remove_suffix(1);
    return text;
}

} // namespace

LanguageLines::LanguageLines(const std::filesystem::path& file)
    : file_(file, std::ios::binary), buffer_(longestLine, '\0') {
    if (!file_) throw std::system_error(errno, std::generic_category(), file.string());
}

// The bytes between two line feeds; a line that does not fit the buffer is skipped and comes back as nullopt.
std::optional<std::string_view> LanguageLines::ReadLine() {
    file_.getline(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    bytes_ += file_.gcount();
    auto length = static_cast<std::size_t>(file_.gcount());
    if (file_.fail() && !file_.eof()) {
        if (file_.bad()) throw std::runtime_error("The language file cannot be read.");
        file_.clear();
        file_.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
        bytes_ += file_.gcount();
        return std::nullopt;
    }
    if (!file_.eof()) --length; // gcount has the line feed in it
    std::string_view line(buffer_.data(), length);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

std::optional<std::string> LanguageLines::Next() {
    while (file_.good() && bytes_ < largestFile) {
        const auto line = ReadLine();
        if (std::exchange(header_, false) || !line || line->empty()) continue;
        if (line->find('\0') == std::string_view::npos) return DecodeLine(*line);
    }
    return std::nullopt;
}

std::string LanguageFileFault(const std::filesystem::path& file, std::string_view code) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return "is no file";
    std::map<std::string, std::size_t, std::less<>> texts;
    if (CharacterCount(code) == codeLength) texts.emplace(code, 0);
    LanguageLines lines(file);
    while (const auto line = lines.Next()) {
        const auto entry = SplitLanguageLine(*line);
        if (entry && !entry->Text.empty() && !CodeOfLanguageLine(*line).empty())
            ++texts[std::string(entry->Code)];
    }
    if (texts.empty()) return "holds no texts";
    for (const auto& [language, count] : texts) {
        if (count < fewestTexts)
            return fmt::format("holds only {} texts of the language {}", count, language);
    }
    return {};
}

std::optional<LanguageEntry> SplitLanguageLine(std::string_view line) {
    auto fields = Split(line, '\t', fieldCount);
    fields.resize(fieldCount);
    const std::string_view number = Trim(fields[2]);
    LanguageEntry entry{Trim(fields[0]), Trim(fields[1]), NormalizeTextNumber(number),
                        WithoutQuotes(fields[3]), WithoutQuotes(fields[4])};
    if (entry.Section.empty() || number.empty() || CharacterCount(number) > longestNumber)
        return std::nullopt;
    return entry;
}

std::string_view CodeOfLanguageLine(std::string_view line) {
    const std::string_view code = Trim(line.substr(0, line.find_first_of("\t#")));
    return CharacterCount(code) == codeLength && code != EveryLanguage ? code : std::string_view();
}

std::string NormalizeTextNumber(std::string_view number) {
    const auto value = ParseWholeNumber(number);
    return value ? fmt::format("{:03}", *value) : std::string(number);
}

} // namespace korvalin
