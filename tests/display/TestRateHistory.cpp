#include "display/RateHistory.h"

using namespace korvalin;

namespace {

void Add(RateHistory& history, double time, double received, double transmitted = 0,
         std::uint32_t source = 1) {
    HistorySample& sample = history.Append(1, time);
    sample.CounterSource = source;
    sample.Received = received;
    sample.Transmitted = transmitted;
    history.ComputeRates(1);
}

const HistorySample& Newest(const RateHistory& history) {
    return history.At(history.Samples(), 1);
}

TEST(RateHistory, RatesDivideByTheTimeBetweenSamples) {
    RateHistory history(300, 1);
    Add(history, 100, 1000);
    EXPECT_EQ(Newest(history).RateDL[0], 0) << "a single sample has no rate";
    Add(history, 101, 3000, 50);
    for (const float rate : Newest(history).RateDL)
        EXPECT_EQ(rate, 2000) << "two samples serve all spans";
    EXPECT_EQ(Newest(history).RateUL[0], 0) << "a counter of 0 is never the older end";
    Add(history, 102, 6000, 80);
    EXPECT_EQ(Newest(history).RateUL[0], 30);
}

TEST(RateHistory, EverySpanReachesAsFarBackAsItsSeconds) {
    RateHistory history(300, 1);
    // The counter grows with the square of time, so every span has its own rate: t + (t - w) = 2t - w.
    for (int t = 1; t <= 200; ++t)
        Add(history, t, static_cast<double>(t) * t);
    for (std::size_t slot = 0; slot < RateSlots; ++slot)
        EXPECT_FLOAT_EQ(Newest(history).RateDL[slot], static_cast<float>(400 - RateSpans[slot]));
}

TEST(RateHistory, AJitteringClockStaysWithinHalfASecond) {
    RateHistory history(300, 1);
    for (const double t : {10.0, 10.7, 12.1})
        Add(history, t, t * 1000);
    EXPECT_FLOAT_EQ(Newest(history).RateDL[0], 1000) << "1.4 s back, not 2.1";
    Add(history, 17.1, 99100); // the program was blocked for five seconds
    EXPECT_FLOAT_EQ(Newest(history).RateDL[0], (99100.0F - 12100) / 5);
}

TEST(RateHistory, ACounterThatFellGivesZeroAndAnotherSourceGivesNoRate) {
    RateHistory history(10, 1);
    Add(history, 1, 5000);
    Add(history, 2, 4000);
    EXPECT_EQ(Newest(history).RateDL[0], 0);
    Add(history, 3, 9e9, 0, 2); // another adapter moved into the slot
    EXPECT_EQ(Newest(history).RateDL[0], 0);
    Add(history, 4, 9e9 + 100, 0, 2);
    EXPECT_EQ(Newest(history).RateDL[7], 100);
}

TEST(RateHistory, GrowingAndShrinkingKeepsTheNewestAtTheEnd) {
    RateHistory history(5, 1);
    for (int t = 1; t <= 7; ++t)
        Add(history, t, 100 + t); // holds 3 .. 7, the ring has turned
    history.ResizeSamples(8);
    EXPECT_EQ(history.At(8, 1).T, 7);
    EXPECT_EQ(history.At(4, 1).T, 3);
    EXPECT_EQ(history.At(3, 1).T, 0);
    history.ResizeSamples(2);
    EXPECT_EQ(history.At(1, 1).T, 6);
    EXPECT_EQ(history.At(2, 1).T, 7);
    history.GrowLines(3);
    EXPECT_EQ(history.At(2, 1).T, 7);
    EXPECT_EQ(history.At(2, 3).T, 0);
    Add(history, 8, 200);
    EXPECT_EQ(history.At(1, 1).T, 7);
}

} // namespace
