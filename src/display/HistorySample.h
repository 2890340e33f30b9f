#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace korvalin {

/// The spans in seconds over which rates are averaged; slot s of a sample belongs to chart line s + 1.
inline constexpr std::array<int, 8> RateSpans = {1, 2, 5, 10, 15, 20, 30, 60};
inline constexpr std::size_t RateSlots = RateSpans.size();

/// One sample of one line.
struct HistorySample {
    double T = 0;                    ///< seconds on the continuous time base; 0 = empty sample
    std::uint32_t CounterSource = 0; ///< whose counters these are
    double Received = 0;             ///< cumulative bytes
    double Transmitted = 0;
    std::array<float, RateSlots> RateDL{}; ///< bytes per second averaged over the spans
    std::array<float, RateSlots> RateUL{};
};

} // namespace korvalin
