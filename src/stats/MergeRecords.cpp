#include "stats/MergeRecords.h"

#include "base/Text.h"

#include <cmath>

namespace korvalin {
namespace {

constexpr double mergeSeconds = 60;

// Moments that were written as whole seconds compare as such, whatever their sums have lost in the last bit.
double WholeSeconds(Date date) {
    return std::round(date * SecondsPerDay);
}

bool AreDuplicates(const StatRecord& previous, const StatRecord& current) {
    const double apart = WholeSeconds(current.LogIn) - WholeSeconds(previous.LogIn);
    return std::abs(apart) < mergeSeconds && WholeSeconds(previous.End()) >= WholeSeconds(current.LogIn) &&
           (previous.LineName.Is(current.LineName) || EqualsNoCase(previous.LineName, current.LineName));
}

StatRecord Merged(const StatRecord& previous, const StatRecord& current) {
    const bool previousEndsLater = WholeSeconds(previous.End()) > WholeSeconds(current.End());
    StatRecord survivor = previousEndsLater ? previous : current;
    const Date end = survivor.End();
    survivor.LogIn = std::min(previous.LogIn, current.LogIn);
    survivor.Duration = end - survivor.LogIn;
    return survivor;
}

} // namespace

// From the end, so that a chain of duplicates collapses into one; survivors gather at the end and move down
// once.
std::size_t MergeDuplicates(std::vector<StatRecord>& records) {
    if (records.size() < 2) return 0;
    std::size_t survivor = records.size() - 1;
    for (std::size_t i = records.size() - 1; i-- > 0;) {
        if (AreDuplicates(records[i], records[survivor])) {
            records[survivor] = Merged(records[i], records[survivor]);
        } else if (--survivor != i) {
            records[survivor] = records[i];
        }
    }
    records.erase(records.begin(), records.begin() + static_cast<std::ptrdiff_t>(survivor));
    return survivor;
}

} // namespace korvalin
