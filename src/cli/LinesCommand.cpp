#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Output.h"
#include "program/Program.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdio>
#include <thread>

namespace korvalin {
namespace {

const HistorySample& Newest(const Program& program, std::size_t line) {
    return program.rateHistory.At(program.rateHistory.Samples(), line);
}

nlohmann::json LineAsJson(const Program& program, std::size_t i) {
    const LineRecord& line = program.lines.LineTable(i);
    const HistorySample& sample = Newest(program, i);
    nlohmann::json rates = nlohmann::json::array();
    for (std::size_t slot = 0; slot < RateSlots; ++slot) {
        rates.push_back({{"seconds", RateSpans[slot]},
                         {"received", sample.RateDL[slot]},
                         {"transmitted", sample.RateUL[slot]}});
    }
    return {{"line", i},
            {"name", line.LineName},
            {"entry", line.EntryName},
            {"kind", line.IsRas ? "dial-up" : "adapter"},
            {"connected", line.Connected},
            {"bytes_received", static_cast<std::int64_t>(line.BytesReceived)},
            {"bytes_transmitted", static_cast<std::int64_t>(line.BytesTransmitted)},
            {"log_in", ZonedTime(line.LogIn)},
            {"duration_seconds", line.Duration * SecondsPerDay},
            {"rates", rates}};
}

void PrintJson(const Program& program) {
    nlohmann::json lines = nlohmann::json::array();
    for (std::size_t i = 1; i <= program.lines.LineCount; ++i)
        lines.push_back(LineAsJson(program, i));
    // A name may hold any bytes; one that is no UTF-8 must not end the output.
    fmt::print("{}\n", lines.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

void PrintTable(const Program& program) {
    fmt::print("{:<4} {:<20} {:>16} {:>16} {:>14} {:>14} {:>9}\n", "line", "name", "received", "transmitted",
               "received/s", "transmitted/s", "online");
    for (std::size_t i = 1; i <= program.lines.LineCount; ++i) {
        const LineRecord& line = program.lines.LineTable(i);
        const HistorySample& sample = Newest(program, i);
        fmt::print("{:<4} {:<20} {:>16.0f} {:>16.0f} {:>14.0f} {:>14.0f} {:>9}\n", i,
                   EscapeControls(line.LineName), line.BytesReceived, line.BytesTransmitted, sample.RateDL[0],
                   sample.RateUL[0], FormatDuration(line.Duration));
    }
}

void WaitForStep(const SamplingLoop& loop) {
    std::this_thread::sleep_for(std::chrono::milliseconds(loop.MillisecondsToNextStep()));
}

} // namespace

void PrintLines(Program& program, LinesFormat format, bool watch) {
    program.LoadRecords();
    SamplingLoop& loop = program.samplingLoop;
    loop.TimerMain_Timer();
    do {
        WaitForStep(loop);
        loop.TimerMain_Timer();
        format == LinesFormat::Json ? PrintJson(program) : PrintTable(program);
    } while (std::fflush(stdout) == 0 && watch);
}

} // namespace korvalin
