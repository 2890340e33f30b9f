#include "inet/ShownText.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace korvalin {
namespace {

constexpr std::size_t longest = 100;
constexpr std::size_t bytesOfCharacter = 4;

/// Characters whose last byte lies in a range, as UTF-8.
struct Unshown {
    std::string_view Prefix;
    unsigned char First, Last;
};
constexpr std::array<Unshown, 7> unshown = {{{"\xC2", 0x80, 0x9F},       // C1 controls
                                             {"\xD8", 0x9C, 0x9C},       // Arabic letter mark
                                             {"\xE2\x80", 0x8B, 0x8F},   // no width, left and right marks
                                             {"\xE2\x80", 0xA8, 0xAE},   // line ends, embeddings, overrides
                                             {"\xE2\x81", 0xA0, 0xAF},   // no width, isolates
                                             {"\xEF\xBB", 0xBF, 0xBF},   // byte order mark
                                             {"\xEF\xBF", 0xB9, 0xBB}}}; // annotations

// The bytes of an unshown character at the beginning; 0 when there is none.
std::size_t UnshownAt(std::string_view text) {
    for (const Unshown& range : unshown) {
        if (!text.starts_with(range.Prefix) || text.size() <= range.Prefix.size()) continue;
        const auto last = static_cast<unsigned char>(text[range.Prefix.size()]);
        if (last >= range.First && last <= range.Last) return range.Prefix.size() + 1;
    }
    return 0;
}

bool IsControl(char c) {
    return (c >= 0 && c < ' ') || c == '\x7f';
}

} // namespace

std::string ShownText(std::string_view text) {
    const std::string line =
        DecodeLine(text.substr(0, std::min(text.size(), 2 * bytesOfCharacter * longest)));
    std::string shown;
    for (std::string_view rest = line; !rest.empty();) {
        if (const std::size_t bytes = UnshownAt(rest)) {
            rest.remove_prefix(bytes);
            continue;
        }
        shown += IsControl(rest.front()) ? ' ' : rest.front();
        rest.remove_prefix(1);
    }
    return std::string(Trim(FirstCharacters(shown, longest)));
}

} // namespace korvalin
