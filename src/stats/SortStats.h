#pragma once

#include "stats/StatRecord.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace korvalin {

struct Locale;

/// A sort key by its name: "LineName", "Alias", "LogIn", "LogOut" or "StatPeriodBegin", letter case ignored;
/// any other name stands for "LineName". Texts compare without regard to letter case in the locale's order.
struct StatSortKey {
    std::string_view Name;
    bool Ascending = true;
};

/// The order that SortStats would give, as indices into the records (from 0). Equal records keep their order;
/// descending is ascending read backwards, equal records included. n log n at worst, whatever the input.
std::vector<std::uint32_t> StatOrder(std::span<const StatRecord> records, StatSortKey key1, StatSortKey key2,
                                     const Locale& locale);

/// Sorts in place by the first key, and records that share it by the second one (none when its name is
/// empty).
void SortStats(std::span<StatRecord> records, StatSortKey key1, StatSortKey key2, const Locale& locale);

} // namespace korvalin
