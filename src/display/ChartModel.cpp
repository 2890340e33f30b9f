#include "display/ChartModel.h"

#include "base/Numbers.h"
#include "base/Text.h"

#include <algorithm>
#include <cmath>

namespace korvalin {
namespace {

constexpr std::size_t longestName = 16;
constexpr std::size_t earliestCut = 12;

// Behind the samples of the newest one's connection begins what another adapter has left in the line's slot,
// or nothing.
bool EndsCurve(const HistorySample& sample, const HistorySample& newest) {
    return sample.T == 0 || (newest.CounterSource != 0 && sample.CounterSource != 0 &&
                             sample.CounterSource != newest.CounterSource);
}

// Where a sample stands, counted in samples from the left edge; below 1 it is out of sight.
double Position(const HistorySample& sample, double newestTime, std::size_t visible) {
    return RoundToEven(static_cast<double>(visible) - (newestTime - sample.T));
}

} // namespace

std::size_t VisibleSamplesFor(int widthMinutes) {
    constexpr double stepSeconds = 1.0;
    return static_cast<std::size_t>(std::floor(widthMinutes * 60 / stepSeconds));
}

double RoundUpToStep(double maximum, std::int32_t unitFactor) {
    const double units = maximum / unitFactor;
    double step = 500;
    if (units <= 10000) step = 50;
    if (units <= 1000) step = 5;
    return (std::floor(units / step) * step + step) * unitFactor;
}

double LargestRate(const RateHistory& history, std::size_t line, const InfoTexts& texts,
                   std::size_t visible) {
    const HistorySample& newest = history.At(history.Samples(), line);
    float largest = 0;
    for (std::size_t n = history.Samples(); n >= 1; --n) {
        const HistorySample& sample = history.At(n, line);
        if (EndsCurve(sample, newest) || Position(sample, newest.T, visible) < 1) break;
        for (std::size_t slot = 0; slot < RateSlots; ++slot) {
            if (texts.LineDLShow[slot]) largest = std::max(largest, sample.RateDL[slot]);
            if (texts.LineULShow[slot]) largest = std::max(largest, sample.RateUL[slot]);
        }
    }
    return largest;
}

double ScaleMaximum(double roundedMaximum, const InfoTexts& texts) {
    if (texts.ChartUseMax) return texts.ChartMax * 1000.0;
    const double scale = roundedMaximum == 0 ? EmptyChartScale : std::floor(roundedMaximum);
    return std::max(scale, texts.ChartMinMax * 1000.0);
}

std::vector<int> TimeLinePositions(std::size_t visible, int spacingSeconds) {
    std::vector<int> positions;
    if (spacingSeconds <= 0) return positions;
    for (int x = static_cast<int>(visible) - spacingSeconds; x >= 1; x -= spacingSeconds)
        positions.push_back(x);
    return positions;
}

std::string ShortLineName(std::string_view name) {
    if (CharacterCount(name) <= longestName) return std::string(name);
    const std::string_view cut = FirstCharacters(name, longestName);
    const auto blank = cut.rfind(' ');
    const bool late = blank != std::string_view::npos && CharacterCount(cut.substr(0, blank)) >= earliestCut;
    return std::string(late ? cut.substr(0, blank) : cut);
}

std::string LineLabel(const LineState& lines, const InfoTexts& texts, std::string_view onlinePrefix) {
    if (lines.LineCount == 0 || texts.LineIndex == 0) return {};
    const LineRecord& line = lines.LineTable(texts.LineIndex);
    std::string label = texts.ShowLineName ? ShortLineName(line.LineName) : "On";
    if (line.Connected && (line.IsRas || texts.ShowDuration)) label += " " + FormatDuration(line.Duration);
    const auto online = std::count_if(lines.LineTable.begin(), lines.LineTable.end(),
                                      [](const LineRecord& record) { return record.Connected; });
    if (lines.LineCount >= 2 && online > 1) label = std::string(onlinePrefix) + " " + label;
    return label;
}

void CurvePoints(const RateHistory& history, std::size_t line, std::size_t slot, Direction direction,
                 std::size_t visible, double clip, std::vector<ChartPoint>& points) {
    points.clear();
    const HistorySample& newest = history.At(history.Samples(), line);
    for (std::size_t n = history.Samples(); n >= 1; --n) {
        const HistorySample& sample = history.At(n, line);
        if (EndsCurve(sample, newest)) break;
        const double x = Position(sample, newest.T, visible);
        if (x < 1) break;
        const float rate = direction == Direction::Received ? sample.RateDL[slot] : sample.RateUL[slot];
        points.push_back({x, std::min<double>(rate, clip)});
    }
    std::reverse(points.begin(), points.end());
}

} // namespace korvalin
