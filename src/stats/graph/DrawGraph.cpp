#include "stats/graph/DrawGraph.h"

#include "base/Locale.h"
#include "stats/graph/GraphCanvas.h"
#include "stats/graph/GraphLabels.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace korvalin {
namespace {

constexpr std::int32_t black = 0x000000;
constexpr auto buttonFace = static_cast<std::int32_t>(0x8000000F);

// Twips, outward from the axes.
constexpr double scaleTick = 50;
constexpr double scaleTextDistance = 90;
constexpr double periodTick = 100;
constexpr double periodLabelDistance = 150;
constexpr double valueDistance = 100;    // above the base line
constexpr double beyondTop = 60;         // how far a bar that leaves the scale can be seen
constexpr double leastTickDistance = 45; // nearer ones would run together

constexpr std::size_t tooManyForOutlines = 251;

class Drawing {
  public:
    Drawing(GraphCanvas& canvas, const PeriodGraph& graph, const GraphView& view, const GraphScale& scale,
            const Locale& locale)
        : canvas_(canvas),
          graph_(graph),
          view_(view),
          scale_(scale),
          locale_(locale),
          layout_(LayOut(canvas.Width(), canvas.Height(),
                         canvas.TextWidth(ScaleText(scale.Top, scale.Decimals, locale)),
                         graph.Periods.size())) {
        canvas_.SetOrigin(layout_.Left, GraphLayout::Below);
    }

    const GraphLayout& Draw() {
        DrawGrid();
        for (std::size_t i = 0; i < layout_.Count; ++i)
            DrawBar(i);
        DrawAxes();
        DrawPeriodLabels();
        if (view_.ShowValue) DrawValues();
        return layout_;
    }

  private:
    void DrawGrid() {
        const double distance = layout_.Height / scale_.Lines;
        // In a low picture only every so-manieth line has room for its value, the top's always being one.
        const int step = std::max(1, static_cast<int>(std::ceil(canvas_.TextHeight() / distance)));
        for (int j = 1; j <= scale_.Lines; ++j) {
            const double y = j * distance;
            canvas_.Line(0, y, layout_.Width, y, buttonFace);
            canvas_.Line(-scaleTick, y, 0, y, black);
            if ((scale_.Lines - j) % step != 0) continue;
            canvas_.Print(-scaleTextDistance, y,
                          ScaleText(j * scale_.Top / scale_.Lines, scale_.Decimals, locale_),
                          TextAnchor::End);
        }
    }

    double HeightOf(double bytes) const {
        const double height = bytes / (scale_.Top * view_.UnitBytes) * layout_.Height;
        return std::clamp(height, 0.0, layout_.Height + beyondTop);
    }

    void DrawPart(std::size_t index, double bottom, double top, std::int32_t color) {
        if (top <= bottom) return;
        canvas_.Box(layout_.BarLeft(index), bottom, layout_.BarRight(index), top, color);
        if (layout_.Count >= tooManyForOutlines) return;
        canvas_.Outline(layout_.BarLeft(index), bottom, layout_.BarRight(index), top, black);
    }

    void DrawBar(std::size_t index) {
        const PeriodVolume& period = graph_.Periods[index];
        const double sent = view_.Send ? period.BytesTransmitted : 0;
        DrawPart(index, 0, HeightOf(sent), view_.Colors.Sent);
        if (!view_.Received) return;
        DrawPart(index, HeightOf(sent), HeightOf(sent + period.BytesReceived), view_.Colors.Received);
    }

    void DrawAxes() {
        canvas_.Line(0, layout_.Height, 0, -periodTick, black);
        canvas_.Line(-scaleTick, 0, layout_.Width, 0, black);
    }

    // Hands out the periods whose texts have room beside the last one's and before the right edge.
    template <typename TextOf, typename Use>
    void ForTextsWithRoom(const TextOf& textOf, const Use& use) {
        const double height = canvas_.TextHeight();
        double next = -std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i < layout_.Count; ++i) {
            const double centre = layout_.Centre(i);
            if (centre < next || centre + height / 2 > layout_.Width) continue;
            const std::string text = textOf(graph_.Periods[i]);
            if (text.empty()) continue;
            use(centre, text);
            next = centre + height;
        }
    }

    void DrawPeriodLabels() {
        const auto tick = [&](double x) { canvas_.Line(x, 0, x, -periodTick, black); };
        const bool everyTick = layout_.Slot() >= leastTickDistance;
        for (std::size_t i = 0; everyTick && i < layout_.Count; ++i)
            tick(layout_.Centre(i));
        ForTextsWithRoom(
            [&](const PeriodVolume& period) {
                return PeriodLabel(period, view_.Period, layout_.Count, locale_);
            },
            [&](double centre, const std::string& text) {
                if (!everyTick) tick(centre);
                canvas_.PrintUpwards(centre, -periodLabelDistance, text, TextAnchor::End);
            });
    }

    void DrawValues() {
        // Below one unit a bar needs a decimal more than the grid.
        const int decimals = scale_.Decimals > 0 ? scale_.Decimals + 1 : 0;
        ForTextsWithRoom(
            [&](const PeriodVolume& period) {
                const double bytes = ShownVolume(period, view_.Send, view_.Received);
                return bytes > 0 ? VolumeText(bytes, view_, decimals, locale_) : std::string();
            },
            [&](double centre, const std::string& text) {
                canvas_.PrintUpwards(centre, valueDistance, text, TextAnchor::Start);
            });
    }

    GraphCanvas& canvas_;
    const PeriodGraph& graph_;
    const GraphView& view_;
    const GraphScale& scale_;
    const Locale& locale_;
    GraphLayout layout_;
};

} // namespace

bool HasGraph(const PeriodGraph& graph, const GraphView& view) {
    return graph.Maximum != 0 && (view.Send || view.Received) && !graph.Periods.empty();
}

std::optional<GraphScale> ScaleOf(const PeriodGraph& graph, const GraphView& view) {
    const double maximum = graph.Maximum / view.UnitBytes;
    return view.FixedTop > 0 ? ScaleOfTop(view.FixedTop) : ScaleFor(maximum);
}

std::string VolumeText(double bytes, const GraphView& view, int decimals, const Locale& locale) {
    return ScaleText(bytes / view.UnitBytes, decimals, locale) + " " + view.UnitName;
}

GraphLayout DrawGraph(GraphCanvas& canvas, const PeriodGraph& graph, const GraphView& view,
                      const GraphScale& scale, const Locale& locale) {
    return Drawing(canvas, graph, view, scale, locale).Draw();
}

} // namespace korvalin
