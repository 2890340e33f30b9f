#include "StatsFixture.h"
#include "stats/SortStats.h"
#include "stats/StatCells.h"

#include <numeric>

using namespace korvalin;

namespace {

class SortStatsTest : public StatsFixture {
  protected:
    // Names a record by its line and its place before the sort.
    std::string Sorted(StatSortKey key1, StatSortKey key2) {
        for (std::size_t i = 0; i < records.List.size(); ++i)
            records.List[i].ListRow = static_cast<std::int32_t>(i);
        std::vector<StatRecord> list = records.List;
        SortStats(list, key1, key2, locale);
        std::string order;
        for (const StatRecord& record : list)
            order += fmt::format("{}{} ", record.LineName.View(), record.ListRow);
        return order;
    }
};

TEST_F(SortStatsTest, OrdersByEachKeyEitherWay) {
    Add("b", 3, 0);
    Add("A", 1, 0);
    Add("B", 3, 0);
    Add("a", 2, 0);
    const char* const aliases4[] = {"y", "Z", "x", "z"};
    for (std::size_t i = 0; i < 4; ++i) {
        records.List[i].Alias = records.Texts.Store(aliases4[i]);
        records.List[i].LogOut = 10 - static_cast<double>(i);
        records.List[i].StatPeriodBegin = i == 0 ? 9 : 1;
    }
    struct {
        StatSortKey Key1, Key2;
        const char* Expected;
    } const rows[] = {{{"LineName", true}, {"", true}, "A1 a3 b0 B2 "},
                      {{"LineName", false}, {"", true}, "B2 b0 a3 A1 "},
                      {{"no such key", true}, {"", true}, "A1 a3 b0 B2 "},
                      {{"LOGIN", true}, {"", true}, "A1 a3 b0 B2 "},
                      {{"login", false}, {"", true}, "B2 b0 a3 A1 "},
                      {{"LogOut", true}, {"", true}, "a3 B2 A1 b0 "},
                      {{"alias", true}, {"", true}, "B2 b0 A1 a3 "},
                      {{"StatPeriodBegin", true}, {"LineName", true}, "A1 a3 B2 b0 "},
                      {{"LineName", true}, {"LogIn", false}, "a3 A1 B2 b0 "},
                      {{"LineName", false}, {"LogIn", true}, "B2 b0 A1 a3 "},
                      {{"Alias", true}, {"StatPeriodBegin", false}, "B2 b0 a3 A1 "}};
    for (const auto& row : rows)
        EXPECT_EQ(Sorted(row.Key1, row.Key2), row.Expected)
            << row.Key1.Name << row.Key1.Ascending << row.Key2.Name << row.Key2.Ascending;
    locale.Collate = [](const std::string& left, const std::string& right) { return right.compare(left); };
    EXPECT_EQ(Sorted({"LineName", true}, {"", true}), "b0 B2 A1 a3 ");
}

TEST_F(SortStatsTest, NoOrderOfTheInputMakesItSlowOrWrong) {
    constexpr int count = 200'000;
    const std::pair<const char*, std::function<int(int)>> inputs[] = {
        {"sorted", [](int i) { return i; }},
        {"reversed", [](int i) { return count - i; }},
        {"equal", [](int) { return 7; }},
        {"few values", [](int i) { return i * 7919 % 5; }},
        {"organ pipe", [](int i) { return std::min(i, count - i); }},
        {"saw", [](int i) { return i % 450; }},
        {"mixed", [](int i) { return static_cast<int>(i * 2654435761U % count); }}};
    for (const auto& [what, value] : inputs) {
        records = StatRecords();
        for (int i = 0; i < count; ++i)
            Add(i % 3 == 0 ? "eth0" : "wlan0", value(i), 0).FileIndex = i;
        std::vector<StatRecord> expected = records.List;
        std::ranges::stable_sort(expected, {}, [](const StatRecord& record) {
            return std::pair(record.LineName.View(), record.LogIn);
        });
        SortStats(records.List, {"LineName", true}, {"LogIn", true}, locale);
        EXPECT_TRUE(
            std::ranges::equal(expected, records.List, {}, &StatRecord::FileIndex, &StatRecord::FileIndex))
            << what;
    }
}

TEST_F(SortStatsTest, NotesOrderByTheirBytesAndEqualOnesKeepTheirOrder) {
    using namespace std::string_view_literals;
    const auto notes = {"31.12.2004 22:22:22 off"sv,
                        "31.12.2004 22:22:21 off"sv,
                        ""sv,
                        "31.12.2004 22:22"sv,
                        "\xC3\xA4"sv,
                        "31.12.2004 22:22:22 off"sv,
                        "31.12.2"sv,
                        "31.12.2\0"sv,
                        "z"sv};
    for (const std::string_view note : notes)
        Add("a", 1, 0).Info = records.Texts.Store(note);
    std::vector<std::uint32_t> rows(records.List.size());
    std::iota(rows.begin(), rows.end(), 0U);
    SortRows(records.List, StatColumn::Field::Info, true, locale, rows);
    EXPECT_EQ(rows, (std::vector<std::uint32_t>{2, 6, 7, 3, 1, 0, 5, 8, 4}));
    SortRows(records.List, StatColumn::Field::Info, false, locale, rows);
    EXPECT_EQ(rows, (std::vector<std::uint32_t>{4, 8, 0, 5, 1, 3, 7, 6, 2}));
}

} // namespace
