// Statistics files as years of use leave them; the same count gives the same file.
#pragma once

#include "stats/StatLine.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

namespace korvalin {

/// Connections of several lines in the order of their ends, each line's one after the other, the lines side
/// by side. A few are there twice, as two programs that watch the same line would write them.
class StatGenerator {
  public:
    /// `count` is the number of records that will be asked for: the repeated ones are spread over it.
    explicit StatGenerator(std::size_t count);

    /// The next connection; its texts are valid until the one after.
    StatFields Next();

  private:
    static constexpr std::size_t lineCount = 7;
    struct Connection {
        std::int64_t LogIn = 0, Seconds = 0; // since the first day
    };

    double Random();
    double Between(double low, double high);
    void Redial(Connection& connection);
    StatFields FieldsOf(std::size_t line, const Connection& connection);

    std::mt19937_64 engine_{20041231};
    std::array<Connection, lineCount> next_;
    std::size_t perDuplicate_;
    std::size_t given_ = 0;
    std::size_t lastLine_ = 0;
    Connection last_;
    std::string note_;
};

enum class RecordOrder { ByEnd, Shuffled };

/// Writes a statistics file of `count` records. Throws std::system_error when it cannot be written.
void WriteStatistics(const std::filesystem::path& path, std::size_t count, RecordOrder order);

} // namespace korvalin
