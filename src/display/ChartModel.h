// What the chart shows, computed without a window: scale, time lines, label and curves.
#pragma once

#include "display/InfoTexts.h"
#include "display/RateHistory.h"
#include "traffic/LineRecord.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvalin {

/// Scale maximum of a chart without any traffic, in bytes per second.
inline constexpr double EmptyChartScale = 10000;

/// Number of samples across a chart that is this many minutes wide, at one sample a second.
std::size_t VisibleSamplesFor(int widthMinutes);

/// Rounds a largest rate (bytes per second) up to the next step of 5, 50 or 500 display units; always
/// strictly above it.
double RoundUpToStep(double maximum, std::int32_t unitFactor);

/// Largest rate of the curves that are switched on, over the `visible` seconds that the chart shows of a
/// line.
double LargestRate(const RateHistory& history, std::size_t line, const InfoTexts& texts, std::size_t visible);

/// Scale maximum (bytes per second) for a rounded largest rate: with the floor, or the fixed scale, of the
/// settings.
double ScaleMaximum(double roundedMaximum, const InfoTexts& texts);

/// Positions of the vertical time lines, counted in samples from the left edge.
std::vector<int> TimeLinePositions(std::size_t visible, int spacingSeconds);

/// A line's name for the narrow chart: at most 16 characters, cut at its last blank when that stands beyond
/// the 12th.
std::string ShortLineName(std::string_view name);

/// The label of the chart's line: its name or "On", and its online time while it is connected. `onlinePrefix`
/// stands before the name when several lines are online.
std::string LineLabel(const LineState& lines, const InfoTexts& texts, std::string_view onlinePrefix);

/// A point of a curve: x in samples from the left edge (1 .. visible), y in bytes per second.
struct ChartPoint {
    double X;
    double Y;
};

enum class Direction { Received, Sent };

/// The curve of one rate slot, placed by time stamps and clipped at `clip`, from left to right: it reaches
/// back from the newest sample at the right edge to the first empty one or the left edge.
void CurvePoints(const RateHistory& history, std::size_t line, std::size_t slot, Direction direction,
                 std::size_t visible, double clip, std::vector<ChartPoint>& points);

} // namespace korvalin
