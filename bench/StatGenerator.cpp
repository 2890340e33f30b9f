#include "StatGenerator.h"

#include "base/Locale.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <system_error>
#include <vector>

namespace korvalin {
namespace {

constexpr std::size_t duplicates = 20; // fewer than make a load rewrite its file
constexpr double shortestSeconds = 2;
constexpr double longestSeconds = 6.0 * 3600;
constexpr double shortestPause = 5;
constexpr double longestPause = 3600;
constexpr std::int64_t secondsUntilSeenTwice = 3;
constexpr double leastBytesPerSecond = 20;
constexpr double mostBytesPerSecond = 60'000;

constexpr std::array<std::string_view, 7> names = {"Home", "Modem", "eth0", "wlan0", "ppp0", "Night", "Work"};
constexpr std::array<std::string_view, 4> users = {"anna", "ben", "guest", "root"};

} // namespace

StatGenerator::StatGenerator(std::size_t count) : perDuplicate_(count / duplicates + 2) {
    for (Connection& connection : next_)
        Redial(connection);
}

// The library's distributions may differ from one to the next; the file is to be the same everywhere.
double StatGenerator::Random() {
    constexpr int unusedBits = 11;
    return static_cast<double>(engine_() >> unusedBits) * 0x1p-53;
}

// Short ones are as frequent as long ones: every doubling is equally likely.
double StatGenerator::Between(double low, double high) {
    return std::floor(low * std::pow(high / low, Random()));
}

void StatGenerator::Redial(Connection& connection) {
    const auto pause = static_cast<std::int64_t>(Between(shortestPause, longestPause));
    connection.LogIn += connection.Seconds + pause;
    connection.Seconds = static_cast<std::int64_t>(Between(shortestSeconds, longestSeconds));
}

StatFields StatGenerator::Next() {
    if (++given_ % perDuplicate_ == 0) {
        last_.LogIn += std::min(secondsUntilSeenTwice, last_.Seconds);
        last_.Seconds -= std::min(secondsUntilSeenTwice, last_.Seconds);
        return FieldsOf(lastLine_, last_);
    }
    const auto ended =
        std::min_element(next_.begin(), next_.end(), [](const Connection& a, const Connection& b) {
            return a.LogIn + a.Seconds < b.LogIn + b.Seconds;
        });
    lastLine_ = static_cast<std::size_t>(ended - next_.begin());
    last_ = *ended;
    Redial(*ended);
    return FieldsOf(lastLine_, last_);
}

StatFields StatGenerator::FieldsOf(std::size_t line, const Connection& connection) {
    static const Date firstDay = DateSerial(2001, 5, 1);
    const auto moment = [](std::int64_t seconds) {
        return firstDay + static_cast<double>(seconds) / SecondsPerDay;
    };
    const double received =
        static_cast<double>(connection.Seconds) * Between(leastBytesPerSecond, mostBytesPerSecond);
    const double transmitted = std::floor(received * (0.02 + 0.2 * Random()));
    note_ =
        FormatPattern(moment(connection.LogIn + connection.Seconds), "dd.mm.yyyy hh:nn:ss") + " Disconnected";
    const auto user = static_cast<std::size_t>(Between(1, users.size() + 1.0)) - 1;
    return {names.at(line),
            moment(connection.LogIn),
            static_cast<double>(connection.Seconds) / SecondsPerDay,
            transmitted,
            received,
            note_,
            users.at(user)};
}

void WriteStatistics(const std::filesystem::path& path, std::size_t count, RecordOrder order) {
    StatGenerator generator(count);
    std::vector<std::string> lines(count);
    for (std::string& line : lines)
        WriteStatRecord(line, generator.Next());
    if (order == RecordOrder::Shuffled) {
        std::mt19937_64 engine(count);
        for (std::size_t i = count; i > 1; --i)
            std::swap(lines[i - 1], lines[engine() % i]);
    }
    std::ofstream file(path, std::ios::binary);
    for (const std::string& line : lines)
        file << line;
    file.close();
    if (!file) throw std::system_error(EIO, std::generic_category(), path.string());
}

} // namespace korvalin
