#pragma once

#include "stats/graph/GraphLayout.h"
#include "stats/graph/GraphScale.h"
#include "stats/graph/PeriodGraph.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace korvalin {

class GraphCanvas;
struct Locale;

/// The colours of the two directions, red + 256 * green + 65536 * blue.
struct GraphColors {
    std::int32_t Sent = 0x00FF00;
    std::int32_t Received = 0x0000FF;
};
/// Green and red, and a pair that can be told apart by those who see neither well.
inline constexpr std::array<GraphColors, 2> GraphPalettes = {GraphColors(), {0xB27200, 0x009FE6}};

/// How a period graph is shown.
struct GraphView {
    SumPeriod Period = SumPeriod::BillingMonth;
    bool Send = true;
    bool Received = true;
    bool ShowValue = false; ///< prints its volume at each bar
    std::string UnitName = "MB";
    double UnitBytes = 1'000'000;
    GraphColors Colors;
    double FixedTop = 0; ///< of the scale, in units; 0: the largest volume decides
};

/// Whether there is anything to draw.
bool HasGraph(const PeriodGraph& graph, const GraphView& view);

/// The scale of a graph; nullopt when its largest volume is beyond every scale.
std::optional<GraphScale> ScaleOf(const PeriodGraph& graph, const GraphView& view);

/// A volume in the view's unit.
std::string VolumeText(double bytes, const GraphView& view, int decimals, const Locale& locale);

/// Draws a graph on an empty canvas. Bars beyond the scale's top run just above it. Texts that would touch
/// the one before are left out, and so are marks of periods too dense to tell them apart.
GraphLayout DrawGraph(GraphCanvas& canvas, const PeriodGraph& graph, const GraphView& view,
                      const GraphScale& scale, const Locale& locale);

} // namespace korvalin
