#include "display/RateHistory.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr HistorySample emptySample;

// Bytes per second between two cumulative counters; a counter that fell gives 0.
float Rate(double newer, double older, double seconds) {
    return static_cast<float>(std::max((newer - older) / seconds, 0.0));
}

} // namespace

RateHistory::RateHistory(std::size_t samples, std::size_t lines) : samples_(samples) {
    GrowLines(lines);
}

const HistorySample& RateHistory::At(std::size_t sample, std::size_t line) const {
    if (sample == 0) return emptySample;
    const Column& column = columns_.at(line - 1);
    return column.Ring[Index(column, sample)];
}

HistorySample& RateHistory::Append(std::size_t line, double time) {
    Column& column = columns_.at(line - 1);
    column.Newest = Index(column, 1);
    HistorySample& newest = column.Ring[column.Newest];
    newest = HistorySample();
    newest.T = time;
    return newest;
}

void RateHistory::ComputeRates(std::size_t line) {
    Column& column = columns_.at(line - 1);
    HistorySample& newest = column.Ring[column.Newest];
    std::size_t j = samples_;
    for (std::size_t slot = 0; slot < RateSlots; ++slot) {
        // Back to the first sample at least the span (less half a second) old, or to the oldest there is from
        // the same connection: its counters say nothing about another one's.
        for (;;) {
            --j;
            if (At(j, line).T <= 0 || At(j, line).CounterSource != newest.CounterSource) {
                ++j;
                break;
            }
            if (newest.T - At(j, line).T >= RateSpans[slot] - 0.5) break;
        }
        if (j == samples_) continue;
        const HistorySample& older = At(j, line);
        const double seconds = newest.T - older.T;
        if (seconds <= 0) continue;
        // A counter of 0 is that of a line that was not connected.
        if (older.Received > 0) newest.RateDL[slot] = Rate(newest.Received, older.Received, seconds);
        if (older.Transmitted > 0) newest.RateUL[slot] = Rate(newest.Transmitted, older.Transmitted, seconds);
    }
}

void RateHistory::GrowLines(std::size_t lines) {
    if (lines > columns_.size())
        columns_.resize(lines, Column{std::vector<HistorySample>(samples_), samples_ - 1});
}

void RateHistory::ResizeSamples(std::size_t samples) {
    if (samples == samples_) return;
    for (std::size_t line = 1; line <= columns_.size(); ++line) {
        std::vector<HistorySample> kept(samples);
        const std::size_t overlap = std::min(samples, samples_);
        for (std::size_t k = 0; k < overlap; ++k)
            kept[samples - 1 - k] = At(samples_ - k, line);
        columns_[line - 1] = {std::move(kept), samples - 1};
    }
    samples_ = samples;
}

} // namespace korvalin
