#pragma once

#include "display/HistorySample.h"

#include <vector>

namespace korvalin {

/// The samples of every line. Samples count from 1 (oldest) to Samples() (newest); sample 0 is always empty
/// and ends every backward search. Lines count from 1. Each line is a ring, so a new sample moves nothing.
class RateHistory {
  public:
    explicit RateHistory(std::size_t samples = 1, std::size_t lines = 1);

    std::size_t Samples() const { return samples_; }
    std::size_t Lines() const { return columns_.size(); }

    /// Sample 0 .. Samples() of line 1 .. Lines().
    const HistorySample& At(std::size_t sample, std::size_t line) const;

    /// Moves the line's samples one place towards 1 and returns the newest, empty but for its time stamp.
    HistorySample& Append(std::size_t line, double time);

    /// Computes the eight averaged rates of the line's newest sample from the counters before it.
    void ComputeRates(std::size_t line);

    /// More lines get empty samples; fewer than before leave the table as it is.
    void GrowLines(std::size_t lines);

    /// Keeps the newest sample at the end: growing puts empty samples in front, shrinking drops the oldest.
    void ResizeSamples(std::size_t samples);

  private:
    struct Column {
        std::vector<HistorySample> Ring;
        std::size_t Newest = 0;
    };
    static std::size_t Index(const Column& column, std::size_t sample) {
        // The oldest follows the newest in the ring. Conditional instead of a division: this is the inner
        // loop.
        const std::size_t index = column.Newest + sample;
        return index >= column.Ring.size() ? index - column.Ring.size() : index;
    }

    std::size_t samples_;
    std::vector<Column> columns_;
};

} // namespace korvalin
