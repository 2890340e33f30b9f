#include "stats/SortStats.h"

#include "base/Locale.h"
#include "base/Text.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <string>
#include <unordered_map>

namespace korvalin {
namespace {

using Index = std::vector<std::uint32_t>;
// A text's place in the locale's order. As few texts name a million records, ranks are what is compared.
using Ranks = std::vector<std::uint32_t>;
using Dates = std::vector<Date>;

using TextField = PooledText StatRecord::*;
using DateField = Date StatRecord::*;

TextField TextFieldOf(std::string_view name) {
    return EqualsNoCase(name, "Alias") ? &StatRecord::Alias : &StatRecord::LineName;
}

DateField DateFieldOf(std::string_view name) {
    if (EqualsNoCase(name, "LogIn")) return &StatRecord::LogIn;
    if (EqualsNoCase(name, "LogOut")) return &StatRecord::LogOut;
    if (EqualsNoCase(name, "StatPeriodBegin")) return &StatRecord::StatPeriodBegin;
    return nullptr;
}

struct DistinctText {
    std::string Folded;
    std::uint32_t Number; // in the order of first appearance
};

// Rank by number: equal when the texts differ in letter case only.
Ranks RankTexts(std::vector<DistinctText> texts, const Locale& locale) {
    std::sort(texts.begin(), texts.end(), [&](const DistinctText& left, const DistinctText& right) {
        const int order = locale.Collate(left.Folded, right.Folded);
        return order != 0 ? order < 0 : left.Folded < right.Folded;
    });
    Ranks rankOf(texts.size());
    std::uint32_t rank = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i > 0 && texts[i].Folded != texts[i - 1].Folded) ++rank;
        rankOf[texts[i].Number] = rank;
    }
    return rankOf;
}

Ranks RanksOf(std::span<const StatRecord> records, TextField field, const Locale& locale) {
    Ranks ranks(records.size());
    std::unordered_map<const void*, std::uint32_t> numbers;
    std::vector<DistinctText> texts;
    const void* last = nullptr;
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < records.size(); ++i) {
        const PooledText text = records[i].*field;
        if (i == 0 || text.Identity() != last) {
            last = text.Identity();
            const auto [found, isNew] = numbers.try_emplace(last, static_cast<std::uint32_t>(texts.size()));
            number = found->second;
            if (isNew) texts.push_back({ToLower(text), number});
        }
        ranks[i] = number;
    }
    const Ranks rankOf = RankTexts(std::move(texts), locale);
    for (std::uint32_t& rank : ranks)
        rank = rankOf[rank];
    return ranks;
}

Dates DatesOf(std::span<const StatRecord> records, DateField field) {
    Dates dates(records.size());
    std::transform(records.begin(), records.end(), dates.begin(),
                   [field](const StatRecord& record) { return record.*field; });
    return dates;
}

// Ranks are dense: each one's place follows from the number of those below it.
void SortByRank(const Ranks& ranks, Index& index) {
    if (ranks.empty()) return;
    Index next(*std::max_element(ranks.begin(), ranks.end()) + std::size_t{2});
    for (const std::uint32_t rank : ranks)
        ++next[rank + std::size_t{1}];
    std::partial_sum(next.begin(), next.end(), next.begin());
    Index sorted(index.size());
    for (const std::uint32_t i : index)
        sorted[next[ranks[i]]++] = i;
    index = std::move(sorted);
}

// Sorts index[low, high) by the keys it points at. Keys and positions are moved together: looking the keys
// up while sorting would miss the cache at every step. The library's sort never goes quadratic nor deep.
template <typename Key>
void SortIndexedArray(const std::vector<Key>& keys, Index& index, std::size_t low, std::size_t high) {
    const auto first = index.begin() + static_cast<std::ptrdiff_t>(low);
    const auto last = index.begin() + static_cast<std::ptrdiff_t>(high);
    if (std::is_sorted(first, last, [&](auto left, auto right) { return keys[left] < keys[right]; })) return;
    struct Entry {
        Key Value;
        std::uint32_t Position; // equal keys keep their order
        std::uint32_t Record;
    };
    std::vector<Entry> entries;
    entries.reserve(high - low);
    for (std::size_t i = low; i < high; ++i)
        entries.push_back({keys[index[i]], static_cast<std::uint32_t>(i), index[i]});
    std::sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
        return left.Value != right.Value ? left.Value < right.Value : left.Position < right.Position;
    });
    std::transform(entries.begin(), entries.end(), first, [](const Entry& entry) { return entry.Record; });
}

// Sorts each run of records that share the first key by the second one.
template <typename Key1, typename Key2>
void SortRuns(const std::vector<Key1>& keys1, const std::vector<Key2>& keys2, bool ascending, Index& index) {
    for (std::size_t begin = 0; begin < index.size();) {
        std::size_t end = begin + 1;
        while (end < index.size() && keys1[index[end]] == keys1[index[begin]])
            ++end;
        if (end - begin > 1) {
            SortIndexedArray(keys2, index, begin, end);
            if (!ascending) {
                std::reverse(index.begin() + static_cast<std::ptrdiff_t>(begin),
                             index.begin() + static_cast<std::ptrdiff_t>(end));
            }
        }
        begin = end;
    }
}

// Calls use(keys) with the key's values: ranks for a text, dates as they are.
template <typename Use>
void WithKeys(std::span<const StatRecord> records, std::string_view name, const Locale& locale, Use&& use) {
    if (const DateField field = DateFieldOf(name)) {
        use(DatesOf(records, field));
    } else {
        use(RanksOf(records, TextFieldOf(name), locale));
    }
}

void SortByKey(const Ranks& ranks, Index& index) {
    SortByRank(ranks, index);
}
void SortByKey(const Dates& dates, Index& index) {
    SortIndexedArray(dates, index, 0, index.size());
}

// Swaps every record into its place: no second array of records. What stood there goes to where the right one
// was, and `order` then tells that. Records that stay together are moved in the order they lie in memory.
void Arrange(std::span<StatRecord> records, Index order) {
    for (std::uint32_t place = 0; place < order.size(); ++place) {
        std::uint32_t from = order[place];
        while (from < place)
            from = order[from];
        order[place] = from;
        if (from != place) std::swap(records[place], records[from]);
    }
}

} // namespace

std::vector<std::uint32_t> StatOrder(std::span<const StatRecord> records, StatSortKey key1, StatSortKey key2,
                                     const Locale& locale) {
    Index index(records.size());
    std::iota(index.begin(), index.end(), 0U);
    WithKeys(records, key1.Name, locale, [&](const auto& keys1) {
        SortByKey(keys1, index);
        if (!key1.Ascending) std::reverse(index.begin(), index.end());
        if (key2.Name.empty()) return;
        WithKeys(records, key2.Name, locale,
                 [&](const auto& keys2) { SortRuns(keys1, keys2, key2.Ascending, index); });
    });
    return index;
}

void SortStats(std::span<StatRecord> records, StatSortKey key1, StatSortKey key2, const Locale& locale) {
    Arrange(records, StatOrder(records, key1, key2, locale));
}

} // namespace korvalin
