#include "base/NearestText.h"

#include "base/Text.h"

#include <algorithm>
#include <numeric>

namespace korvalin {
namespace {

// How many characters are to be added, left out or changed to make one text of the other.
std::size_t Distance(std::string_view left, std::string_view right) {
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 1; i <= left.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t changed = diagonal + (left[i - 1] == right[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
        }
    }
    return row.back();
}

} // namespace

std::string NearestText(const std::vector<std::string>& texts, std::string_view typed) {
    const std::string lower = ToLower(typed);
    const auto nearest =
        std::min_element(texts.begin(), texts.end(), [&](const std::string& a, const std::string& b) {
            return Distance(ToLower(a), lower) < Distance(ToLower(b), lower);
        });
    return nearest == texts.end() ? std::string() : *nearest;
}

} // namespace korvalin
