// The figures of this moment for programs that ask again and again: panels and monitoring systems.
#pragma once

#include "stats/Forecast.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvalin {

class Program;

/// A monitored line with its rates (bytes a second) and its connection's bytes.
struct LineFigures {
    std::string Name;
    std::string Alias;
    double BytesReceived = 0;
    double BytesTransmitted = 0;
    double Received = 0;
    double Transmitted = 0;
};

/// Reads the lines, and the sums that the statistics file and the program that records have.
class UseOfLines {
  public:
    explicit UseOfLines(Program& program) : program_(program) {}

    /// Brings the figures up to date after waiting for the next full second. A rate is what moved between two
    /// seconds, so the first call looks twice.
    void Renew();

    std::vector<LineFigures> Lines() const;
    std::vector<AliasUse> Aliases();

    /// The use that matters most: of this alias, of the first line's or of the first one that is known.
    AliasUse Of(const std::string& alias);

  private:
    void ReadSums();

    Program& program_;
    bool begun_ = false;
    std::uintmax_t fileBytes_ = 0; // of the statistics when they were read
};

} // namespace korvalin
