#include "cli/UseOfLines.h"

#include "base/Text.h"
#include "program/Program.h"

#include <chrono>
#include <thread>

namespace korvalin {

void UseOfLines::Renew() {
    SamplingLoop& loop = program_.samplingLoop;
    if (!begun_) {
        program_.LoadRecords();
        loop.TimerMain_Timer();
    }
    ReadSums();
    begun_ = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(loop.MillisecondsToNextStep()));
    loop.TimerMain_Timer();
}

void UseOfLines::ReadSums() {
    std::error_code missing;
    const std::uintmax_t bytes = std::filesystem::file_size(program_.statFile.StatFilePath(), missing);
    program_.monthSums.SetOpenElsewhere(program_.openConnections.Now());
    if (begun_ && bytes == fileBytes_) return;
    fileBytes_ = bytes;
    StatRecords records;
    program_.statFile.LoadStatFile(records, false);
    program_.monthSums.CalcStatsThisMonth(records, program_.monthSums.RecordsMade());
}

std::vector<LineFigures> UseOfLines::Lines() const {
    std::vector<LineFigures> lines;
    for (std::size_t i = 1; i <= program_.lines.LineCount; ++i) {
        const LineRecord& line = program_.lines.LineTable(i);
        const HistorySample& sample = program_.rateHistory.At(program_.rateHistory.Samples(), i);
        lines.push_back({line.EntryName, line.LineName, line.BytesReceived, line.BytesTransmitted,
                         sample.RateDL[0], sample.RateUL[0]});
    }
    return lines;
}

std::vector<AliasUse> UseOfLines::Aliases() {
    std::vector<AliasUse> uses;
    for (std::size_t i = 1; i <= program_.aliases.AliasCount(); ++i)
        uses.push_back(program_.monthSums.UseOf(i));
    return uses;
}

AliasUse UseOfLines::Of(const std::string& alias) {
    std::size_t index = program_.aliases.AliasIndex(alias);
    if (index == 0 && alias.empty()) {
        const std::vector<LineFigures> lines = Lines();
        if (!lines.empty()) index = program_.aliases.AliasIndex(lines.front().Alias);
        if (index == 0 && program_.aliases.AliasCount() > 0) index = 1;
    }
    if (index != 0) return program_.monthSums.UseOf(index);
    AliasUse none;
    none.Alias = alias;
    return none;
}

} // namespace korvalin
