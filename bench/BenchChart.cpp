// Drawing the chart with every curve over the longest history.
#include "display/ChartModel.h"
#include "forms/PictureBox.h"

#include <QApplication>
#include <QPainter>
#include <benchmark/benchmark.h>

#include <cmath>

namespace korvalin {
namespace {

constexpr std::size_t samples = 3600;
constexpr int width = 313;
constexpr int height = 97;

RateHistory FullHistory() {
    RateHistory history(samples, 1);
    unsigned random = 1;
    for (std::size_t t = 1; t <= samples; ++t) {
        HistorySample& sample = history.Append(1, static_cast<double>(t));
        for (std::size_t slot = 0; slot < RateSlots; ++slot) {
            random = random * 1664525 + 1013904223;
            sample.RateDL[slot] = static_cast<float>(random >> 16);
            sample.RateUL[slot] = static_cast<float>(random >> 18);
        }
    }
    return history;
}

InfoTexts EveryCurve() {
    InfoTexts texts;
    texts.LineDLShow.fill(true);
    texts.LineULShow.fill(true);
    return texts;
}

void Scale(PictureBox& picture, double maximum) {
    picture.SetScaleLeft(1);
    picture.SetScaleWidth(samples);
    picture.SetScaleTop(maximum * 1.2);
    picture.SetScaleHeight(-maximum * 1.4);
    picture.SetBackColor(15323561);
}

void ChartOf16CurvesWith3600Samples(benchmark::State& state) {
    const RateHistory history = FullHistory();
    const InfoTexts texts = EveryCurve();
    PictureBox picture;
    picture.resize(static_cast<int>(state.range(0)) * width, static_cast<int>(state.range(0)) * height);
    std::vector<ChartPoint> points;
    for (auto _ : state) {
        const double maximum = LargestRate(history, 1, texts, samples);
        Scale(picture, maximum);
        for (std::size_t slot = 0; slot < RateSlots; ++slot) {
            for (const Direction direction : {Direction::Received, Direction::Sent}) {
                CurvePoints(history, 1, slot, direction, samples, maximum, points);
                picture.Polyline(points, 0xFF);
            }
        }
        picture.Refresh();
    }
}
BENCHMARK(ChartOf16CurvesWith3600Samples)->Arg(1)->Arg(3)->Unit(benchmark::kMicrosecond);

// Peer: every sample a point of a painter's path, as is usual.
void ChartOf16CurvesWith3600SamplesPeer(benchmark::State& state) {
    const RateHistory history = FullHistory();
    const int scale = static_cast<int>(state.range(0));
    QImage image(scale * width, scale * height, QImage::Format_RGB32);
    for (auto _ : state) {
        image.fill(Qt::cyan);
        QPainter painter(&image);
        for (std::size_t curve = 0; curve < 2 * RateSlots; ++curve) {
            QPolygonF polygon;
            for (std::size_t n = 1; n <= samples; ++n) {
                const HistorySample& sample = history.At(n, 1);
                const float rate = curve % 2 == 0 ? sample.RateDL[curve / 2] : sample.RateUL[curve / 2];
                polygon << QPointF(static_cast<double>(n) * image.width() / samples,
                                   image.height() * (1 - static_cast<double>(rate) / 65536));
            }
            painter.drawPolyline(polygon);
        }
    }
}
BENCHMARK(ChartOf16CurvesWith3600SamplesPeer)->Arg(1)->Arg(3)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace korvalin

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
