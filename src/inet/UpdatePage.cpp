#include "inet/UpdatePage.h"

#include "base/Text.h"
#include "inet/ShownText.h"

#include <charconv>
#include <tuple>
#include <vector>

namespace korvalin {
namespace {

constexpr auto nowhere = std::string_view::npos;

std::optional<int> ReadPart(std::string_view text) {
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [read, error] = std::from_chars(text.data(), end, value);
    const bool isNumber = error == std::errc() && read == end && value >= 0 && text.front() != '-';
    return isNumber ? std::optional(value) : std::nullopt;
}

} // namespace

std::optional<ProgramVersion> ReadVersion(std::string_view text) {
    const std::vector<std::string_view> parts = Split(text, '.', 4);
    if (parts.size() != 3) return std::nullopt;
    const auto major = ReadPart(parts[0]);
    const auto minor = ReadPart(parts[1]);
    const auto revision = ReadPart(parts[2]);
    if (!major || !minor || !revision) return std::nullopt;
    return ProgramVersion{*major, *minor, *revision};
}

UpdatePage::UpdatePage(std::string text) : text_(std::move(text)), lower_(ToLower(text_)) {}

std::size_t UpdatePage::Find(std::string_view mark, std::size_t from) const {
    return lower_.find(ToLower(mark), from);
}

// Up to the next "<"; without one there is no value.
std::string UpdatePage::Value(std::size_t from) const {
    const std::size_t end = text_.find('<', from);
    if (from >= text_.size() || end == nowhere) return {};
    return ShownText(std::string_view(text_).substr(from, end - from));
}

std::string UpdatePage::NewestRelease() const {
    const std::size_t mark = Find("Newest Release");
    const std::size_t colon = mark == nowhere ? nowhere : text_.find(':', mark);
    return colon == nowhere ? std::string() : Value(colon + 2);
}

// The mark's letters also occur in words and links; before a digit they are the mark.
std::size_t UpdatePage::NumbersAfter(std::string_view mark, std::size_t from) const {
    for (std::size_t found = Find(mark, from); found != nowhere; found = Find(mark, found + 1)) {
        const std::size_t numbers = found + mark.size();
        if (ReadPart(std::string_view(text_).substr(numbers, 1))) return numbers;
    }
    return nowhere;
}

std::optional<UpdateOffer> UpdatePage::Offer(Channel channel) const {
    constexpr std::string_view extension = ".exe";
    const std::size_t upgradable = Find("Upgradable");
    if (upgradable == nowhere) return std::nullopt;
    const std::size_t numbers = NumbersAfter(channel == Channel::Automatic ? "Ax" : "Vx", upgradable);
    if (numbers == nowhere) return std::nullopt;
    const std::size_t hyphen = text_.find('-', numbers);
    if (hyphen == nowhere) return std::nullopt;
    const std::size_t end = Find(extension, hyphen);
    const auto version = ReadVersion(std::string_view(text_).substr(numbers, hyphen - numbers));
    if (end == nowhere || !version) return std::nullopt;
    return UpdateOffer{*version, text_.substr(hyphen + 1, end + extension.size() - hyphen - 1)};
}

std::string UpdatePage::LanguageInformation(std::string_view languageCode) const {
    std::string mark = std::string(languageCode) + ":";
    std::size_t found = languageCode.empty() ? nowhere : Find(mark);
    if (found == nowhere) found = Find(mark = "ENG:");
    return found == nowhere ? std::string() : Value(found + mark.size());
}

bool IsNewer(const ProgramVersion& offered, const ProgramVersion& running) {
    return std::tie(offered.Major, offered.Minor, offered.Revision) >
           std::tie(running.Major, running.Minor, running.Revision);
}

} // namespace korvalin
