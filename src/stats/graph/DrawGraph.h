#pragma once

#include "stats/graph/GraphLayout.h"
#include "stats/graph/GraphScale.h"
#include "stats/graph/PeriodGraph.h"

#include <optional>
#include <string>

namespace korvalin {

class GraphCanvas;
struct Locale;

/// How a period graph is shown.
struct GraphView {
    SumPeriod Period = SumPeriod::BillingMonth;
    bool Send = true;
    bool Received = true;
    bool ShowValue = false; ///< prints its volume at each bar
    std::string UnitName = "MB";
    double UnitBytes = 1'000'000;
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
