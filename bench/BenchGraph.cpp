// The period graph over a million connections, and its picture with as many bars as it may have.
#include "base/Locale.h"
#include "cli/ConsoleMessageBoxes.h"
#include "cli/Windowless.h"
#include "errors/Errors.h"
#include "forms/PictureBox.h"
#include "lang/UnitFormat.h"
#include "platform/linux/system/LinuxSystem.h"
#include "settings/Settings.h"
#include "stats/Aliases.h"
#include "stats/SortStats.h"
#include "stats/graph/DrawGraph.h"
#include "stats/graph/PictureCanvas.h"

#include <QPainter>
#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <filesystem>

namespace korvalin {
namespace {

constexpr std::size_t recordCount = 1'000'000;
const Date today = DateSerial(2024, 3, 15);

// Connections of seven lines as a file sorted by line and log-in holds them, over ten years.
class Statistics {
  public:
    Statistics() {
        unsigned random = 1;
        for (std::size_t i = 0; i < recordCount; ++i) {
            constexpr std::size_t perLine = recordCount / 7 + 1;
            random = random * 1664525 + 1013904223;
            StatRecord record;
            record.LineName = record.Alias = records.Texts.Intern("line" + std::to_string(i / perLine));
            record.LogOut = today - 3650 + 3650.0 * static_cast<double>(i % perLine) / perLine;
            record.BytesReceived = random >> 8;
            record.BytesTransmitted = random >> 12;
            records.List.push_back(record);
        }
        for (int line = 0; line < 7; ++line)
            aliases_.GetAlias("line" + std::to_string(line));
    }
    ~Statistics() { std::filesystem::remove_all(folder_); }
    Statistics(const Statistics&) = delete;
    Statistics& operator=(const Statistics&) = delete;

    PeriodGraph Calc(SumPeriod period) const {
        GraphOptions options{"line3", today - 3650, today, period};
        options.MaxPeriods = 1000;
        return CalcGraph(records, options, aliases_, today);
    }

    StatRecords records;

  private:
    static std::filesystem::path MakeFolder() {
        const auto folder = std::filesystem::temp_directory_path() / "korvalin-bench-graph";
        setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
        setenv("XDG_DATA_HOME", folder.c_str(), 1);
        return folder;
    }

    std::filesystem::path folder_ = MakeFolder();
    PlainEvents events_;
    ConsoleMessageBoxes boxes_;
    NoScreen screen_;
    LinuxSystem system_;
    Ports ports_ = system_.PortsWith(events_, boxes_, screen_);
    Locale locale_;
    Errors errors_{ports_.Clock, ports_.Files, boxes_, locale_, "bench"};
    Settings settings_{ports_.Registry, errors_, screen_, ports_.Clock, locale_};
    UnitFormat units_{errors_, locale_, ports_.Clock};
    Aliases aliases_{settings_, errors_, ports_.Clock, units_};
};

void CalcGraphOf1000000Records(benchmark::State& state) {
    const Statistics statistics;
    for (auto _ : state)
        benchmark::DoNotOptimize(statistics.Calc(static_cast<SumPeriod>(state.range(0))));
}
BENCHMARK(CalcGraphOf1000000Records)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

// Peer: sorted by alias and newest end, then walked period by period.
void CalcGraphOf1000000RecordsPeer(benchmark::State& state) {
    const Statistics statistics;
    const auto& records = statistics.records.List;
    PeriodGraph graph = statistics.Calc(static_cast<SumPeriod>(state.range(0)));
    for (auto _ : state) {
        const auto order = StatOrder(records, {"Alias", true}, {"LogOut", false}, Locale());
        auto next = order.begin();
        for (auto period = graph.Periods.rbegin(); period != graph.Periods.rend(); ++period) {
            for (; next != order.end(); ++next) {
                const StatRecord& record = records[*next];
                if (record.Alias.View() != "line3" || record.LogOut >= period->End) continue;
                if (record.LogOut < period->Begin) break;
                period->BytesReceived += record.BytesReceived;
            }
        }
        benchmark::DoNotOptimize(graph);
    }
}
BENCHMARK(CalcGraphOf1000000RecordsPeer)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

PeriodGraph ManyPeriods(std::size_t count) {
    PeriodGraph graph;
    unsigned random = 1;
    for (std::size_t i = 0; i < count; ++i) {
        random = random * 1664525 + 1013904223;
        const Date day = today - static_cast<double>(i);
        graph.Periods.push_back({day, day + 1, static_cast<double>(random >> 8), 1e6});
    }
    graph.Maximum = 20e6;
    return graph;
}

constexpr int width = 1200;
constexpr int height = 700;

void DrawGraphWithValues(benchmark::State& state) {
    const PeriodGraph graph = ManyPeriods(static_cast<std::size_t>(state.range(0)));
    GraphView view;
    view.Period = SumPeriod::Day;
    view.ShowValue = true;
    PictureBox picture;
    picture.resize(width, height);
    for (auto _ : state) {
        PictureCanvas canvas(picture);
        DrawGraph(canvas, graph, view, *ScaleOf(graph, view), Locale());
    }
}
BENCHMARK(DrawGraphWithValues)->Arg(24)->Arg(250)->Arg(1000)->Unit(benchmark::kMicrosecond);

// Peer: the bars alone as a painter's rectangles, as is usual.
void DrawGraphWithValuesPeer(benchmark::State& state) {
    const PeriodGraph graph = ManyPeriods(static_cast<std::size_t>(state.range(0)));
    QImage image(width, height, QImage::Format_RGB32);
    const double slot = static_cast<double>(width) / static_cast<double>(graph.Periods.size());
    for (auto _ : state) {
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        double x = 0;
        for (const PeriodVolume& period : graph.Periods) {
            const double sent = period.BytesTransmitted / graph.Maximum * height;
            const double received = period.BytesReceived / graph.Maximum * height;
            painter.setBrush(Qt::green);
            painter.drawRect(QRectF(x, height - sent, slot, sent));
            painter.setBrush(Qt::red);
            painter.drawRect(QRectF(x, height - sent - received, slot, received));
            x += slot;
        }
    }
}
BENCHMARK(DrawGraphWithValuesPeer)->Arg(24)->Arg(250)->Arg(1000)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace korvalin
