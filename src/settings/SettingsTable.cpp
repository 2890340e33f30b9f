#include "settings/SettingsTable.h"

#include "base/Numbers.h"
#include "base/Text.h"

namespace korvalin {
namespace {

template <int Low>
std::int32_t AtLeast(std::int32_t value) {
    return value < Low ? Low : value;
}

// Below Low becomes WhenBelow, above High becomes WhenAbove.
template <int Low, int WhenBelow, int High, int WhenAbove>
std::int32_t Within(std::int32_t value) {
    if (value < Low) return WhenBelow;
    return value > High ? WhenAbove : value;
}

template <int First, int Second, int Otherwise>
std::int32_t OneOf(std::int32_t value) {
    return value == First || value == Second ? value : Otherwise;
}

// The traffic that makes an adapter count as active. A value from 10000 on is taken as given in a unit that
// is a thousand times smaller.
std::int32_t ActiveTraffic(std::int32_t value) {
    if (value <= 10) return 10;
    if (value < 10000) return value;
    const double thousandth = value / 1000.0;
    return thousandth > 10000 ? 10 : static_cast<std::int32_t>(RoundToEven(thousandth));
}

constexpr ScreenDefault mainWindowLeft = {ScreenSide::Width, "MON_Width", 1, 350};
constexpr ScreenDefault mainWindowTop = {ScreenSide::Height, "MON_Height", 1, 780};
constexpr ScreenDefault statisticsLeft = {ScreenSide::Width, "STATS_Width", 2, 0};
constexpr ScreenDefault statisticsTop = {ScreenSide::Height, "STATS_Height", 2, 0};

constexpr SettingKind text = SettingKind::Text;
constexpr SettingKind yesNo = SettingKind::Boolean;
constexpr SettingKind number = SettingKind::WholeNumber;
constexpr SettingKind date = SettingKind::DateTime;

// clang-format off
constexpr SettingRow settingRows[] = {
    {"AutoShow",             yesNo,  "True"},
    {"AutoStart",            yesNo,  "True"},
    {"AutoUpdate",           yesNo,  "True"},
    {"ChartUseMax",          yesNo},
    {"CloseTrayOnly",        yesNo,  "True"},
    {"FirewallUse",          yesNo},
    {"FontBold",             yesNo,  "True"},
    {"ForeGround",           yesNo,  "True"},
    {"GShowValue",           yesNo},
    {"LANByNetwork",         yesNo,  "True"},
    {"LANProt",              yesNo,  "True"},
    {"LANVirtual",           yesNo},
    {"LineDL3Show",          yesNo,  "True"},
    {"LineUL3Show",          yesNo,  "True"},
    {"msinetNotWanted",      yesNo},
    {"MultiInstance",        yesNo},
    {"MultiScreen",          yesNo},
    {"NoInet",               yesNo},
    {"NoTrayTold",           yesNo},
    {"NurTitel",             yesNo},
    {"ProgRunTime",          yesNo,  "True"},
    {"ShowLineName",         yesNo,  "True"},
    {"ShowTimeLines",        yesNo,  "True"},
    {"ShowTitle",            yesNo,  "False"},
    {"Test",                 yesNo},
    {"TrayAnimated",         yesNo,  "True"},

    {"ChartLineNo",          number, "1"},
    {"ChartMax",             number, "100",   AtLeast<1>},
    {"ChartMinMax",          number, "5",     AtLeast<1>},
    {"ConnDataMax",          number, "240",   Within<60, 60, 3600, 3600>},
    {"DeleteStatistics",     number, "0"},
    {"DisplayChoiceDL",      number, "3",     Within<1, 3, 8, 3>},
    {"DisplayChoiceUL",      number, "3",     Within<1, 3, 8, 3>},
    {"FontSize",             number, "9",     Within<4, 8, 72, 8>},
    {"GMaxPeriods",          number, "24",    Within<1, 12, 1000, 1000>},
    {"GPeriodType",          number, "2",     Within<0, 2, 2, 2>},
    {"LANActive",            number, "100",   ActiveTraffic},
    {"Opacity",              number, "255",   Within<10, 25, 255, 255>},
    {"picWidthMin",          number, "4",     Within<1, 1, 60, 60>},
    {"SplitDays",            number, "1",     Within<0, 1, 2, 1>},
    {"TimeLinesSec",         number, "60",    Within<5, 5, 300, 300>},
    {"TrayMaxRate",          number, "30"},
    {"TrayMaxVol",           number, "1000",  AtLeast<10>},
    {"TrayTexts",            number, "255"},
    {"UpdateInterval",       number, "1",     OneOf<1, 4, 4>},
    {"UpdateIntervalChart",  number, {},      Within<0, 0, 20, 2>},

    // Twips. The range of the main window depends on other settings.
    {"MON_Height",           number, "1450"},
    {"MON_Width",            number, "4700"},
    {"STATS_Height",         number, "7000"},
    {"STATS_Left",           number, {},      nullptr, &statisticsLeft},
    {"STATS_State",          number, {},      OneOf<0, 2, 0>},
    {"STATS_Top",            number, {},      nullptr, &statisticsTop},
    {"STATS_Width",          number, "10000"},

    // red + 256 * green + 65536 * blue
    {"ChartBackgroundColor", number, "15323561"},
    {"LineDL1Color",         number, "65535"},
    {"LineDL2Color",         number, "4227327"},
    {"LineDL3Color",         number, "255"},
    {"LineDL4Color",         number, "8388863"},
    {"LineDL5Color",         number, "12615935"},
    {"LineDL6Color",         number, "12615808"},
    {"LineDL7Color",         number, "10485760"},
    {"LineDL8Color",         number, "8388736"},
    {"LineUL1Color",         number, "8454016"},
    {"LineUL2Color",         number, "5812224"},
    {"LineUL3Color",         number, "3632896"},
    {"LineUL4Color",         number, "10522153"},
    {"LineUL5Color",         number, "10461087"},
    {"LineUL6Color",         number, "8618883"},
    {"LineUL7Color",         number, "6908265"},
    {"LineUL8Color",         number, "0"},

    {"FirstRunDate",         date,   {},      nullptr, nullptr, DateRule::FirstRun},
    {"GFrom",                date,   {},      nullptr, nullptr, DateRule::YearAgo},
    {"GTill",                date,   {},      nullptr, nullptr, DateRule::Today},
    {"UpdateCheckLast",      date},
    {"UpdateLast",           date},
    {"UpdateNext",           date},

    {"ChartLineName",        text},
    {"DataPath",             text},
    {"FirewallPassword",     text},
    {"FirewallUser",         text},
    {"FontName",             text,   "Arial"},
    {"GAlias",               text},
    {"Language",             text},
    {"LineLast",             text},
    {"PrgVersion",           text},
    {"Stat_Dimension",       text},
    {"UnitKB",               text,   "KB"},
    {"UnitMB",               text,   "MB"},
    {"Z_StatFilter",         text},
    {"Z_StatLineChosen",     text},
    {"z_optStatSum",         text},
};

enum class Where { AtStart, Anywhere };

struct PatternRow {
    std::string_view Part; // in lower case
    Where Place;
    SettingKind Kind;
    NumberRule Rule = nullptr;
    const ScreenDefault* Computed = nullptr;
    std::string_view WhenMissing = {};
};

// Applied one after the other to names that have no row of their own: the last match decides about the kind, so a
// line named "Showroom" has its free hours as a number.
constexpr PatternRow patternRows[] = {
    {"mon_",           Where::Anywhere, number},
    {"mon_left",       Where::AtStart,  number, nullptr, &mainWindowLeft},
    {"mon_top",        Where::AtStart,  number, nullptr, &mainWindowTop},
    {"stats_",         Where::Anywhere, number},
    {"color",          Where::Anywhere, number},
    {"show",           Where::Anywhere, yesNo},
    {"_freehours",     Where::Anywhere, number},
    {"_freevolume",    Where::Anywhere, number, Within<0, 0, 1000000, 10000>},
    {"_monthstartday", Where::Anywhere, number, Within<1, 1, 31, 31>},
    {"_roundseconds",  Where::Anywhere, number, Within<1, 1, 60, 60>},
    {"_up1mb",         Where::Anywhere, yesNo,  nullptr, nullptr, "True"},
    {"_traytime",      Where::Anywhere, yesNo},
    {"_trayvol",       Where::Anywhere, yesNo},
};
// clang-format on

bool Matches(const PatternRow& pattern, std::string_view lowerName) {
    if (pattern.Place == Where::AtStart) return lowerName.starts_with(pattern.Part);
    return lowerName.find(pattern.Part) != std::string_view::npos;
}

// These hold what the user typed for a line, and the line's name is the user's or the system's choice too:
// the alias of a line named "Showroom" or "Salmon_2" must stay a text although "show" and "mon_" occur in it.
// A line may itself be named "Phone_1": its tariff is none of these.
bool IsTextOfLine(std::string_view lowerName) {
    if (lowerName.ends_with("_alias")) return true;
    const auto isLineSuffix = [&](const PatternRow& pattern) {
        return pattern.Part.starts_with('_') && lowerName.ends_with(pattern.Part);
    };
    return lowerName.starts_with("phone_") &&
           std::none_of(std::begin(patternRows), std::end(patternRows), isLineSuffix);
}

} // namespace

SettingsTable::SettingsTable() {
    for (const SettingRow& row : settingRows)
        rows_.emplace(ToLower(row.Name), &row);
}

std::vector<std::string_view> SettingsTable::Names() {
    std::vector<std::string_view> names;
    for (const SettingRow& row : settingRows)
        names.push_back(row.Name);
    return names;
}

SettingRow SettingsTable::Find(const std::string& lowerName) const {
    const auto found = rows_.find(lowerName);
    if (found != rows_.end()) return *found->second;
    SettingRow row;
    if (IsTextOfLine(lowerName)) return row;
    for (const PatternRow& pattern : patternRows) {
        if (!Matches(pattern, lowerName)) continue;
        row.Kind = pattern.Kind;
        if (pattern.Computed != nullptr) row.Computed = pattern.Computed;
        if (!pattern.WhenMissing.empty()) row.WhenMissing = pattern.WhenMissing;
    }
    return row;
}

std::int32_t SettingsTable::ApplyPatternRules(std::string_view lowerName, std::int32_t value) {
    for (const PatternRow& pattern : patternRows) {
        if (pattern.Rule != nullptr && Matches(pattern, lowerName)) value = pattern.Rule(value);
    }
    return value;
}

} // namespace korvalin
