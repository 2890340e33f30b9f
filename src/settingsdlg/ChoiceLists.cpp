#include "settingsdlg/ChoiceLists.h"

namespace korvalin {
namespace {

struct Run {
    int First;
    int Last;
    int Step;
};

std::vector<int> Values(const std::vector<Run>& runs) {
    std::vector<int> values;
    for (const Run& run : runs) {
        for (int value = run.First; value <= run.Last; value += run.Step)
            values.push_back(value);
    }
    return values;
}

} // namespace

std::vector<int> LanActiveChoices() {
    return Values({{10, 10, 1}, {50, 50, 1}, {100, 3000, 100}});
}

std::vector<int> FontSizeChoices() {
    return Values({{4, 11, 1}, {12, 24, 2}, {30, 50, 10}});
}

std::vector<int> TimeLineChoices() {
    return {5, 10, 15, 20, 30, 60};
}

std::vector<int> MinuteChoices() {
    return Values({{1, 60, 1}});
}

std::vector<int> OpacityChoices() {
    std::vector<int> values;
    for (int percent = 0; percent <= 90; ++percent) {
        if (percent % 10 == 0 || percent % 25 == 0) values.push_back(percent);
    }
    return values;
}

std::vector<int> TrayRateChoices() {
    return Values({{5, 25, 5}, {30, 100, 10}, {200, 900, 100}});
}

std::vector<int> TrayVolumeChoices() {
    return Values({{1000, 1000, 1}, {1500, 1500, 1}, {2000, 10000, 1000}, {15000, 100000, 5000}});
}

} // namespace korvalin
