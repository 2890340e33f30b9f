// What runs every second, and what others do for the same.
#include "ManyAdapters.h"
#include "base/Locale.h"
#include "cli/ConsoleMessageBoxes.h"
#include "cli/Windowless.h"
#include "display/RateHistory.h"
#include "errors/Errors.h"
#include "platform/Internet.h"
#include "platform/linux/netlink/NetlinkNetworkTables.h"
#include "platform/linux/system/LinuxSystem.h"
#include "platform/linux/system/PasswdUser.h"
#include "platform/linux/system/SystemClock.h"
#include "program/Program.h"
#include "settings/Settings.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace korvalin {
namespace {

// A program on this machine's back ends, its settings in a folder of its own.
class Bench {
  public:
    Bench() : folder_(std::filesystem::temp_directory_path() / "korvalin-bench") {
        std::filesystem::remove_all(folder_);
        setenv("XDG_CONFIG_HOME", folder_.c_str(), 1);
        setenv("XDG_DATA_HOME", folder_.c_str(), 1);
        system_ = std::make_unique<LinuxSystem>();
        program = std::make_unique<Program>(system_->PortsWith(events_, boxes_, screen_), Locale());
    }
    ~Bench() {
        program.reset();
        system_.reset();
        std::filesystem::remove_all(folder_);
    }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    std::unique_ptr<Program> program;

  private:
    std::filesystem::path folder_;
    PlainEvents events_;
    ConsoleMessageBoxes boxes_;
    NoScreen screen_;
    std::unique_ptr<LinuxSystem> system_;
};

class Online : public Internet {
  public:
    ConnectedState GetConnectedState() override { return {true, InternetConnectionLan}; }
    DialResult Dial(const std::string&, std::uint32_t) override { return {ErrorCancelled}; }
};

void GetReg(benchmark::State& state) {
    const Bench bench;
    bench.program->settings.SetReg("ChartMax", 50);
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.program->settings.Get(Keys::ChartMax));
}
BENCHMARK(GetReg);

// Peer: a small text file of settings, read anew for one value.
void GetRegPeer(benchmark::State& state) {
    const auto path = std::filesystem::temp_directory_path() / "korvalin-bench.ini";
    std::ofstream file(path);
    for (int i = 0; i < 80; ++i)
        file << "Setting" << i << "=50\n";
    file << "ChartMax=50\n";
    file.close();
    for (auto _ : state) {
        std::ifstream lines(path);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("ChartMax=")) benchmark::DoNotOptimize(std::stoi(line.substr(9)));
        }
    }
    std::filesystem::remove(path);
}
BENCHMARK(GetRegPeer);

// The core on many adapters.
struct ManyAdaptersBench {
    explicit ManyAdaptersBench(const benchmark::State& state)
        : adapters(static_cast<std::size_t>(state.range(0))),
          reader({.NetworkTables = adapters,
                  .LineState = program.lines,
                  .LineBook = program.lineBook,
                  .CounterLedger = program.counterLedger,
                  .LineNames = program.lineNames,
                  .TrafficOptions = program.trafficOptions,
                  .Errors = program.errors,
                  .Clock = clock}),
          monitor({.LineState = program.lines,
                   .LineBook = program.lineBook,
                   .RasReader = program.rasReader,
                   .LanReader = reader,
                   .TrafficOptions = program.trafficOptions,
                   .Internet = internet,
                   .User = user,
                   .Clock = clock,
                   .Errors = program.errors}),
          loop({.Clock = clock,
                .Screen = screen,
                .Settings = program.settings,
                .LineState = program.lines,
                .LineMonitor = monitor,
                .RateHistory = program.rateHistory,
                .InfoTexts = program.infoTexts,
                .Errors = program.errors}) {
        program.lineBook.Plug({[](const std::string& name) { return name; }, [](CloseReason, std::size_t) {},
                               [this] { loop.ResizeRateHistory(); }, [] {}});
        program.LoadRecords();
    }

    Bench bench;
    Program& program = *bench.program;
    ManyAdapters adapters;
    Online internet;
    SystemClock clock;
    PasswdUser user;
    NoScreen screen;
    LanReader reader;
    LineMonitor monitor;
    SamplingLoop loop;
};

// The core's part of a tick: readers, table, history, rates.
void TickWithAdapters(benchmark::State& state) {
    ManyAdaptersBench many(state);
    for (int i = 0; i < 70; ++i)
        many.loop.Get_TransferedData();
    for (auto _ : state)
        many.loop.Get_TransferedData();
}
BENCHMARK(TickWithAdapters)->Arg(1)->Arg(1000);

// What the journal adds to a tick.
void JournalNotes(benchmark::State& state) {
    ManyAdaptersBench many(state);
    JournalKeeper& keeper = many.program.journalKeeper;
    if (!keeper.Start()) return state.SkipWithError("another program records");
    many.loop.Get_TransferedData();
    keeper.PassEnded(); // everything is new
    for (auto _ : state) {
        state.PauseTiming();
        many.loop.Get_TransferedData();
        state.ResumeTiming();
        keeper.PassEnded();
    }
}
BENCHMARK(JournalNotes)->Arg(1)->Arg(1000);

// What it adds once a minute, and whenever a line comes or goes; without the time that the medium takes.
void JournalSave(benchmark::State& state) {
    ManyAdaptersBench many(state);
    JournalKeeper& keeper = many.program.journalKeeper;
    if (!keeper.Start()) return state.SkipWithError("another program records");
    many.loop.Get_TransferedData();
    for (auto _ : state) {
        ++many.program.lines.Changes;
        keeper.PassEnded();
    }
}
BENCHMARK(JournalSave)->Arg(1)->Arg(1000);

// Every second's reading of the dial-up lines that are up on this machine.
void DialUpLines(benchmark::State& state) {
    Bench bench;
    Program& program = *bench.program;
    program.LoadRecords();
    program.lineMonitor.Get_Bytes_Transmitted();
    if (!program.lines.AnyLineConnected || program.lines.MonitoredLineType != LineType::Ras)
        return state.SkipWithError("no dial-up line is up");
    for (auto _ : state)
        program.lineMonitor.Get_Bytes_Transmitted();
    state.counters["lines"] = static_cast<double>(program.lines.LineCount);
}
BENCHMARK(DialUpLines);

// The kernel's link table of this machine, in one dump.
void LinkTable(benchmark::State& state) {
    NetlinkNetworkTables tables;
    for (auto _ : state)
        benchmark::DoNotOptimize(tables.GetIfTable());
}
BENCHMARK(LinkTable);

// Peer: the text table that most monitors read.
void LinkTablePeer(benchmark::State& state) {
    for (auto _ : state) {
        std::ifstream lines("/proc/net/dev");
        std::uint64_t sum = 0;
        for (std::string line; std::getline(lines, line);) {
            const auto colon = line.find(':');
            if (colon != std::string::npos) sum += std::strtoull(line.c_str() + colon + 1, nullptr, 10);
        }
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(LinkTablePeer);

} // namespace
} // namespace korvalin

BENCHMARK_MAIN();
