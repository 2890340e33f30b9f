// One operation on the statistics a run, measured from inside; prints a JSON object. A process of its own, so
// that its peak memory is that of the operation.
#include "BenchProgram.h"
#include "StatGenerator.h"
#include "cli/ConsoleMessageBoxes.h"
#include "data/DataFolder.h"
#include "platform/Events.h"
#include "platform/Journal.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <iostream>
#include <string>
#include <sys/resource.h>

namespace korvalin {
namespace {

namespace fs = std::filesystem;

// Notes for how long nobody looked at a window's events.
class WatchedEvents : public Events {
  public:
    void ProcessPending() override {
        longest_ = std::max(longest_, sinceLast_.Milliseconds());
        sinceLast_ = Stopwatch();
    }
    void Sleep(int) override {}

    void Restart() {
        longest_ = 0;
        sinceLast_ = Stopwatch();
    }
    double LongestGap() const { return longest_; }

  private:
    Stopwatch sinceLast_;
    double longest_ = 0;
};

struct Bench {
    explicit Bench(const fs::path& dataFolder) : program(dataFolder, events, boxes) {}

    WatchedEvents events;
    ConsoleMessageBoxes boxes;
    BenchProgram program;
};

std::uint64_t PeakBytes() {
    constexpr std::uint64_t unit = 1024;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint64_t>(usage.ru_maxrss) * unit;
}

// The gap also counts from the beginning to the first look at the events, and from the last one to the end.
nlohmann::json Load(const fs::path& folder) {
    Bench bench(folder);
    StatRecords records;
    bench.events.Restart();
    const Stopwatch watch;
    const std::int32_t count = bench.program->statFile.LoadStatFile(records, false);
    const double milliseconds = watch.Milliseconds();
    bench.events.ProcessPending();
    return {{"milliseconds", milliseconds},
            {"longest_gap_milliseconds", bench.events.LongestGap()},
            {"peak_bytes", PeakBytes()},
            {"records", count}};
}

nlohmann::json Sums(const fs::path& folder) {
    const Bench bench(folder);
    StatRecords records;
    StatRecords sums;
    const std::int32_t count = bench.program->statFile.LoadStatFile(records, false);
    const Stopwatch watch;
    bench.program->periodSums.CalcStatSums(records, SumPeriod::Day, sums);
    return {{"milliseconds", watch.Milliseconds()},
            {"peak_bytes", PeakBytes()},
            {"records", count},
            {"sums", sums.List.size()}};
}

nlohmann::json Record(const fs::path& folder, std::size_t count) {
    const Bench bench(folder);
    if (!bench.program->BeginToRecord()) throw std::runtime_error("another program records");
    LineRecord& line = bench.program->lines.PreviousLineTable(1);
    StatGenerator generator(count);
    std::vector<double> times;
    for (std::size_t i = 0; i < count; ++i) {
        const StatFields fields = generator.Next();
        line.EntryName = fields.LineName;
        line.LogIn = fields.LogIn;
        line.Duration = fields.Duration;
        line.BytesReceived = fields.BytesReceived;
        line.BytesTransmitted = fields.BytesTransmitted;
        line.User = fields.User;
        const Stopwatch watch;
        bench.program->recorder.SaveStatsLine(CloseReason::LineEnded, 1);
        ++bench.program->lines.Changes;
        bench.program->journalKeeper.PassEnded();
        times.push_back(watch.Milliseconds());
    }
    std::sort(times.begin(), times.end());
    return {{"median_milliseconds", times.at(count / 2)},
            {"maximum_milliseconds", times.back()},
            {"records", count}};
}

// The journal that a run leaves behind, which has ended or was killed.
nlohmann::json WriteJournal(const fs::path& folder, std::uint32_t count, bool killed) {
    constexpr std::uint32_t beyondAll = 1'000'000; // indices that no adapter has
    const Bench bench(folder);
    const Date now = bench.program.SystemTime().Now();
    JournalPicture picture;
    for (std::uint32_t i = 0; i < count; ++i) {
        JournalEntry& entry = picture.Entries.emplace_back();
        entry.Index = beyondAll + i;
        entry.Adapter = "veth" + std::to_string(i);
        entry.Received = entry.Transmitted = 1'000'000;
        entry.ReadAt = now;
        if (!killed) continue;
        entry.Open = OpenConnection();
        entry.Open->LineName = entry.Adapter;
        entry.Open->LogIn = DayOf(now);
        entry.Open->End = now;
        entry.Open->BytesReceived = entry.Open->BytesTransmitted = 1'000'000;
    }
    if (!bench.program.AllPorts().Journal.Save(folder, picture, Journal::Durability::Medium))
        throw std::runtime_error("the journal cannot be written");
    return {{"lines", count}};
}

nlohmann::json Generate(const fs::path& file, std::size_t count, RecordOrder order) {
    WriteStatistics(file, count, order);
    return {{"records", count}, {"bytes", fs::file_size(file)}};
}

constexpr const char* usage = "statbench generate N FILE [shuffled]\n"
                              "statbench load FOLDER\n"
                              "statbench sums FOLDER\n"
                              "statbench record FOLDER N\n"
                              "statbench journal FOLDER N [killed]\n";

nlohmann::json Run(const std::vector<std::string>& words) {
    const std::string command = words.empty() ? "" : words[0];
    const auto count = [&](std::size_t word) { return std::stoul(words.at(word)); };
    if (command == "generate") {
        const bool shuffled = words.size() > 3 && words[3] == "shuffled";
        return Generate(words.at(2), count(1), shuffled ? RecordOrder::Shuffled : RecordOrder::ByEnd);
    }
    if (command == "load") return Load(words.at(1));
    if (command == "sums") return Sums(words.at(1));
    if (command == "record") return Record(words.at(1), count(2));
    if (command == "journal") {
        const bool killed = words.size() > 3 && words[3] == "killed";
        return WriteJournal(words.at(1), static_cast<std::uint32_t>(count(2)), killed);
    }
    throw std::invalid_argument(usage);
}

} // namespace
} // namespace korvalin

int main(int argc, char** argv) {
    try {
        std::cout << korvalin::Run({argv + 1, argv + argc}) << "\n";
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
