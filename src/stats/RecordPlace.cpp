#include "stats/RecordPlace.h"

#include <algorithm>
#include <cmath>

namespace korvalin {
namespace {

constexpr double mergeSeconds = 60;

double WholeSeconds(Date date) {
    return std::round(date * SecondsPerDay);
}

bool IsFree(const RecordTime& place, const std::vector<RecordTime>& others) {
    return std::none_of(others.begin(), others.end(),
                        [&](const RecordTime& other) { return WouldMerge(place, other); });
}

} // namespace

bool WouldMerge(const RecordTime& one, const RecordTime& other) {
    const bool inOrder = one.LogIn <= other.LogIn;
    const RecordTime& previous = inOrder ? one : other;
    const RecordTime& current = inOrder ? other : one;
    const double apart = WholeSeconds(current.LogIn) - WholeSeconds(previous.LogIn);
    return apart < mergeSeconds && WholeSeconds(previous.End) >= WholeSeconds(current.LogIn);
}

// Free places begin or end beside the others: a second behind their ends, a second before their beginnings,
// or so far from a beginning that nobody takes the two for one.
RecordTime FindPlace(const RecordTime& wanted, const std::vector<RecordTime>& others) {
    if (IsFree(wanted, others)) return wanted;
    const Date firstSecond = std::min(DayOf(wanted.LogIn), DayOf(wanted.End));
    const Date lastSecond = EndOfDay(wanted.End);
    RecordTime best = wanted;
    double bestDistance = SecondsPerDay;
    const auto consider = [&](Date logIn, Date end) {
        const RecordTime place = {RoundToSecond(logIn), RoundToSecond(std::max(logIn, end))};
        if (place.LogIn < firstSecond || place.End > lastSecond) return;
        const double distance = std::abs(place.LogIn - wanted.LogIn) + std::abs(place.End - wanted.End);
        if (distance >= bestDistance || !IsFree(place, others)) return;
        best = place;
        bestDistance = distance;
    };
    for (const RecordTime& other : others) {
        for (const Date logIn : {other.End + OneSecond, other.LogIn - mergeSeconds * OneSecond,
                                 other.LogIn + mergeSeconds * OneSecond, other.LogIn - OneSecond}) {
            consider(logIn, wanted.End);
            consider(logIn, logIn);
        }
        consider(wanted.LogIn, other.LogIn - OneSecond);
    }
    return best;
}

} // namespace korvalin
