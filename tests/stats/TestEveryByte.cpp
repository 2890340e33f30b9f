// Random histories of a machine and of the program on it, against a plain account of what moved when: per
// line and day the records hold exactly the bytes that the kernel has counted.
#include "StatsFixture.h"
#include "stats/JournalKeeper.h"
#include "stats/Recorder.h"
#include "traffic/ClockWatch.h"

#include <cerrno>
#include <random>
#include <set>

using namespace korvalin;

namespace {

constexpr std::int32_t threshold = 100; // an adapter counts when it has received more

enum class Act {
    Tick,
    Traffic,
    Add,
    Remove,
    Remake,
    Up,
    Down,
    Rename,
    Reset,
    Network,
    Route,
    SetClock,
    Suspend,
    Start,
    End,
    Kill,
    KillAtWrite,
    PowerLoss,
    Reboot,
    DiskFull,
    Virtual
};
struct Event {
    Act What = Act::Tick;
    unsigned A = 0, B = 0;
};
using History = std::vector<Event>;

std::string Told(const History& history) {
    constexpr const char* names[] = {"Tick",    "Traffic",  "Add",    "Remove",  "Remake",      "Up",
                                     "Down",    "Rename",   "Reset",  "Network", "Route",       "SetClock",
                                     "Suspend", "Start",    "End",    "Kill",    "KillAtWrite", "PowerLoss",
                                     "Reboot",  "DiskFull", "Virtual"};
    std::string text;
    for (const Event& event : history)
        text += fmt::format("{{Act::{}, {}, {}}}, ", names[static_cast<int>(event.What)], event.A, event.B);
    return text;
}

struct Bytes {
    std::uint64_t In = 0, Out = 0;
    auto operator<=>(const Bytes&) const = default;
};
using Sums = std::map<std::pair<std::string, std::string>, Bytes>; // by line and day

struct Adapter {
    InterfaceRow Row;
    std::string Network; // of a wireless one
};

// What counters have moved since a reading; one that fell began again.
std::uint64_t Moved(std::uint64_t last, std::uint64_t now) {
    return now >= last ? now - last : now;
}

// The plain account: what each tick finds belongs to the line and the day of that tick.
class Account {
  public:
    struct Known {
        Bytes Counted;
        std::string Open;    // the line that is up over the adapter
        std::string Adapter; // its kernel name then
        std::string Seen;    // what its line would be called, when it was last seen up in this run
    };
    struct State {
        std::map<std::uint32_t, Known> Interfaces;
        Sums Recorded;
    };
    State Now;

    // `rows` are those that are there, `removed` those that went and were announced.
    void Tick(const std::vector<Adapter>& there, const std::vector<Adapter>& removed, bool follows,
              bool virtuals, bool firstEver, const std::string& day) {
        const bool hardwareUp = std::any_of(there.begin(), there.end(), [](const Adapter& adapter) {
            return adapter.Row.HasHardware && IsUp(adapter);
        });
        const auto leftOut = [&](const Adapter& a) { return !a.Row.HasHardware && hardwareUp && !virtuals; };
        for (const Adapter& adapter : removed)
            EndRemoved(adapter, follows && !leftOut(adapter), day);
        for (const Adapter& adapter : there) {
            if (firstEver && !Now.Interfaces.contains(adapter.Row.Index))
                Now.Interfaces[adapter.Row.Index].Counted = CountersOf(adapter);
            Known& known = Now.Interfaces[adapter.Row.Index];
            const bool active =
                follows && IsUp(adapter) && !leftOut(adapter) && adapter.Row.InOctets > threshold;
            if (follows && IsUp(adapter) && !leftOut(adapter)) known.Seen = NameOf(adapter);
            if (active) Follow(adapter, known, day);
            if (!active && !known.Open.empty()) Take(known.Open, adapter, known, day);
            if (!active) known.Open.clear();
            if (leftOut(adapter)) known.Counted = CountersOf(adapter);
        }
        std::erase_if(Now.Interfaces, [&](const auto& known) {
            return std::none_of(there.begin(), there.end(),
                                [&](const Adapter& adapter) { return adapter.Row.Index == known.first; });
        });
    }
    void CloseLines() {
        for (auto& [index, known] : Now.Interfaces)
            known.Open = known.Seen = "";
    }
    static std::string NameOf(const Adapter& adapter) {
        return adapter.Network.empty() ? adapter.Row.Description : adapter.Network;
    }

  private:
    static bool IsUp(const Adapter& adapter) {
        return adapter.Row.OperStatus == OperationalStatus::Operational;
    }
    static Bytes CountersOf(const Adapter& adapter) { return {adapter.Row.InOctets, adapter.Row.OutOctets}; }
    void Take(const std::string& line, const Adapter& adapter, Known& known, const std::string& day) {
        const Bytes moved = {Moved(known.Counted.In, adapter.Row.InOctets),
                             Moved(known.Counted.Out, adapter.Row.OutOctets)};
        known.Counted = CountersOf(adapter);
        if (moved == Bytes()) return;
        Bytes& sum = Now.Recorded[{line, day}];
        sum.In += moved.In;
        sum.Out += moved.Out;
    }
    void Follow(const Adapter& adapter, Known& known, const std::string& day) {
        const std::string name = NameOf(adapter);
        const bool anotherNetwork =
            !known.Open.empty() && known.Open != name && known.Adapter == adapter.Row.Description;
        Take(anotherNetwork ? known.Open : name, adapter, known, day);
        known.Open = name;
        known.Adapter = adapter.Row.Description;
    }
    void EndRemoved(const Adapter& adapter, bool counts, const std::string& day) {
        Known& known = Now.Interfaces[adapter.Row.Index];
        if (!known.Open.empty()) {
            Take(known.Open, adapter, known, day);
        } else if (counts && adapter.Row.InOctets > threshold) {
            Take(known.Seen.empty() ? adapter.Row.Description : known.Seen, adapter, known, day);
        }
        Now.Interfaces.erase(adapter.Row.Index);
    }
};

struct Killed {}; // no std::exception: nobody catches it on its way

// Counts writes, and ends the program before or after a chosen one.
struct WriteGate {
    int KillAt = 0; // the n-th write from now; 0: none
    bool After = false;
    template <typename Write>
    auto Pass(Write&& write) {
        const bool isIt = KillAt > 0 && --KillAt == 0;
        if (isIt && !After) throw Killed();
        auto result = write();
        if (isIt) throw Killed();
        return result;
    }
};

class GatedFiles : public FakeFiles {
  public:
    explicit GatedFiles(WriteGate& gate) : gate_(gate) {}
    int AppendLines(const std::filesystem::path& path, std::string_view header, std::string_view lines,
                    std::string_view lineEnd, Flush flush) override {
        return gate_.Pass([&] { return FakeFiles::AppendLines(path, header, lines, lineEnd, flush); });
    }

  private:
    WriteGate& gate_;
};

class GatedJournal : public FakeJournal {
  public:
    GatedJournal(WriteGate& gate, Account& account) : gate_(gate), account_(account) {}
    Account::State Kept, OnDisk; // what the plain account has to go on with after a kill, or a power loss

    bool Save(const std::filesystem::path& folder, const JournalPicture& picture,
              Durability durability) override {
        return gate_.Pass([&] {
            Kept = account_.Now;
            if (durability == Durability::Medium) OnDisk = Kept;
            return FakeJournal::Save(folder, picture, durability);
        });
    }
    void Note(const std::vector<JournalNote>& notes) override {
        gate_.Pass([&] {
            Kept.Recorded = account_.Now.Recorded;
            for (const JournalNote& note : notes)
                Kept.Interfaces[note.Index].Counted = account_.Now.Interfaces[note.Index].Counted;
            FakeJournal::Note(notes);
            return 0;
        });
    }

  private:
    WriteGate& gate_;
    Account& account_;
};

class EveryByte : public StatsFixture {
  protected:
    // The program's modules that one run owns.
    struct Run {
        explicit Run(EveryByte& t)
            : Book(State, t.errors, t.clock),
              Names(t.networks, t.ras, t.options),
              Lan(t.network, State, Book, Ledger, Names, t.options, t.errors, t.clock),
              Ras(t.ras, t.network, State, Book, Ledger, Lan, t.settings, t.errors, t.clock),
              Monitor(State, Book, Ras, Lan, t.options, t.internet, t.user, t.clock, t.errors),
              Tariffs(t.settings, t.errors, t.clock, [] { return 1; }),
              Month(Tariffs, State, t.errors, t.clock),
              Record({State, Ledger, t.gatedFiles, t.errors, t.language, t.clock, t.recordingLock, t.locale,
                      [&t] { return t.folder.Path(); },
                      [this](const OpenConnection& made) { Month.Add(made); }}),
              Keeper({t.gatedJournal, Record, Ledger, State, Book, Monitor, t.clock, t.errors,
                      [&t] { return t.folder.Path(); }}),
              Watch(t.clock) {
            State.ProgramStart = t.clock.Now();
            Book.Plug({[](const std::string& entry) { return entry; },
                       [this](CloseReason reason, std::size_t line) { Record.SaveStatsLine(reason, line); },
                       [] {}, [this] { Keeper.PassEnded(); }});
        }
        void FollowClock() {
            if (const Date step = Watch.TakeStep(); step != 0) Monitor.ShiftMoments(step);
        }
        LineState State;
        CounterLedger Ledger;
        LineBook Book;
        LineNames Names;
        LanReader Lan;
        RasReader Ras;
        LineMonitor Monitor;
        Aliases Tariffs;
        MonthSums Month;
        Recorder Record;
        JournalKeeper Keeper;
        ClockWatch Watch;
        bool Follows = false; // a route has been seen
    };

    void BeginWorld() {
        run_.reset();
        account_ = Account();
        there_.clear();
        gone_.clear();
        nextIndex_ = 1;
        renames_ = 0;
        clockWasSet_ = false;
        wrongMonth_.clear();
        gate_ = WriteGate();
        clock = FakeClock();
        options = TrafficOptions();
        internet.State = {true, InternetConnectionLan};
        gatedFiles.DurableResult = 0;
        gatedJournal.KnowsMachine = false;
        gatedJournal.SameBoot = true;
        gatedJournal.Kept = gatedJournal.OnDisk = Account::State();
        gatedJournal.FakeJournal::Kept = gatedJournal.OnMedium = JournalPicture();
        for (const char* name : {"Korvalin_Stats.db", "Korvalin_Stats.csv", "Korvalin_ErrorLog.txt"})
            std::filesystem::remove(folder / name);
    }

    std::string Today() { return FormatDateIso(DayOf(clock.Now())).substr(0, 10); }

    void ShowNetwork() {
        network.Rows.clear();
        networks.Names.clear();
        for (const Adapter& adapter : there_) {
            network.Rows.push_back(adapter.Row);
            networks.Names[adapter.Row.Description] = adapter.Network;
            // Every byte tells in the sums.
            for (const std::string& line : {adapter.Row.Description, adapter.Network}) {
                if (exact_.insert(line).second) settings.SetReg(line + "_Up1MB", false);
            }
        }
        network.Removed.clear();
        for (const Adapter& adapter : gone_)
            network.Removed.push_back(adapter.Row);
        gone_.clear();
    }
    // The account goes first: whatever the program writes meanwhile stands for it.
    void AccountForTick() {
        if (!run_->Follows) run_->Follows = internet.State.Flags != 0;
        account_.Tick(there_, gone_, run_->Follows, options.LanVirtual, !gatedJournal.KnowsMachine && !met_,
                      Today());
        met_ = true;
        ShowNetwork();
    }
    void Tick(double seconds) {
        clock.Advance(seconds);
        if (!run_) return;
        AccountForTick();
        run_->FollowClock();
        run_->Monitor.Get_Bytes_Transmitted();
        CheckMonth();
    }
    // Recorded and open, each once, at every moment. Sums behind a clock that was set back wait for the next
    // load.
    void CheckMonth() {
        if (clockWasSet_) return;
        std::map<std::string, double> moved;
        const std::string month = Today().substr(0, 7);
        for (const auto& [key, bytes] : account_.Now.Recorded) {
            if (key.second.starts_with(month)) moved[key.first] += static_cast<double>(bytes.In + bytes.Out);
        }
        for (const auto& [line, bytes] : moved) {
            const double used = run_->Month.UseOf(line).UsedBytes;
            if (used != bytes)
                wrongMonth_ = fmt::format("{} {}: {} instead of {}", Today(), line, used, bytes);
        }
    }
    void Start() {
        if (run_) return;
        gone_.clear(); // nobody has listened
        met_ = false;
        run_ = std::make_unique<Run>(*this);
        run_->Keeper.Start();
        StatRecords loaded;
        const std::size_t known = run_->Month.RecordsMade() - run_->Record.Unwritten();
        statFile.LoadStatFile(loaded, true);
        run_->Month.CalcStatsThisMonth(loaded, known);
        AccountForTick();
        run_->Monitor.Get_Bytes_Transmitted();
        CheckMonth();
    }
    void End() {
        if (!run_) return;
        AccountForTick();
        account_.CloseLines();
        run_->FollowClock();
        run_->Keeper.RecordOpenLines(CloseReason::SystemEnd);
        run_.reset();
    }
    void Kill() {
        if (!run_) return;
        run_.reset();
        account_.Now = gatedJournal.Kept;
        account_.CloseLines();
        gone_.clear();
    }
    void Boot() {
        for (Account::State* state : {&account_.Now, &gatedJournal.Kept, &gatedJournal.OnDisk})
            state->Interfaces.clear();
        gatedJournal.SameBoot = false;
        nextIndex_ = 1;
        for (Adapter& adapter : there_) {
            adapter.Row.Index = nextIndex_++;
            adapter.Row.InOctets = adapter.Row.OutOctets = 0;
        }
    }
    void LosePower() {
        Kill();
        account_.Now = gatedJournal.Kept = gatedJournal.OnDisk;
        gatedJournal.FakeJournal::Kept = gatedJournal.OnMedium;
        Boot();
    }

    static InterfaceRow Row(std::uint32_t index, const std::string& name, bool hardware) {
        return {index, IfTypeEthernet, OperationalStatus::Operational, 0, 0, true, name, "", hardware};
    }
    void Add(unsigned kind) {
        if (there_.size() >= 3) return;
        const std::string name = fmt::format("{}{}",
                                             kind % 3 == 0   ? "eth"
                                             : kind % 3 == 1 ? "wlan"
                                                             : "tun",
                                             nextIndex_ % 4);
        for (const Adapter& adapter : there_) {
            if (adapter.Row.Description == name) return;
        }
        there_.push_back({Row(nextIndex_++, name, kind % 3 != 2), kind % 3 == 1 ? "Home" : ""});
        UniqueNetworks();
    }
    // Two adapters on one network would be one line; the account keeps them apart.
    void UniqueNetworks() {
        std::map<std::string, int> used;
        for (Adapter& adapter : there_) {
            if (!adapter.Network.empty() && used[adapter.Network]++ > 0)
                adapter.Network += adapter.Row.Description;
        }
    }

    void Do(const Event& event) {
        const auto with = [&](auto&& change) {
            if (!there_.empty()) change(there_[event.A % there_.size()]);
        };
        constexpr double spans[] = {1, 1, 1, 2, 5, 30, 61, 3600, 40'000};
        constexpr double steps[] = {-2 * 86400., -86400., -7200, -3600, -300,       -20,
                                    -5,          20,      3600,  86400, 20 * 86400.};
        switch (event.What) {
        case Act::Tick: return Tick(spans[event.A % std::size(spans)]);
        case Act::Traffic:
            return with([&](Adapter& a) {
                a.Row.InOctets += event.B;
                a.Row.OutOctets += event.B / 7;
            });
        case Act::Add: return Add(event.A);
        case Act::Remove:
        case Act::Remake:
            return with([&](Adapter& a) {
                const Adapter old = a;
                gone_.push_back(old);
                std::erase_if(there_, [&](const Adapter& x) { return x.Row.Index == old.Row.Index; });
                if (event.What == Act::Remove) return;
                there_.push_back({Row(nextIndex_++, old.Row.Description, old.Row.HasHardware), old.Network});
            });
        case Act::Up: return with([](Adapter& a) { a.Row.OperStatus = OperationalStatus::Operational; });
        case Act::Down: return with([](Adapter& a) { a.Row.OperStatus = OperationalStatus::Disconnected; });
        case Act::Rename:
            return with([&](Adapter& a) { a.Row.Description = fmt::format("lan{}", ++renames_); });
        case Act::Reset: return with([](Adapter& a) { a.Row.InOctets = a.Row.OutOctets = 0; });
        case Act::Network:
            return with([&](Adapter& a) {
                if (!a.Network.empty()) a.Network = event.B % 2 == 0 ? "Home" : "Phone";
                UniqueNetworks();
            });
        case Act::Route:
            internet.State = {event.A % 2 == 0, event.A % 2 == 0 ? InternetConnectionLan : 0};
            return;
        case Act::SetClock:
            clockWasSet_ = true;
            return clock.SetWallClock(clock.Now() + steps[event.A % std::size(steps)] / SecondsPerDay);
        case Act::Suspend: return clock.Suspend(spans[event.A % std::size(spans)] * 3);
        case Act::Start: return Start();
        case Act::End: return End();
        case Act::Kill: return Kill();
        case Act::KillAtWrite:
            gate_.KillAt = static_cast<int>(event.A % 8) + 1;
            gate_.After = event.B % 2 == 0;
            return;
        case Act::PowerLoss: return LosePower();
        case Act::Reboot: event.A % 2 == 0 ? End() : Kill(); return Boot();
        case Act::DiskFull: gatedFiles.DurableResult = event.A % 2 == 0 ? EACCES : 0; return;
        case Act::Virtual: options.LanVirtual = event.A % 2 == 0; return;
        }
    }

    // What the files hold in the end, and what they should hold.
    std::pair<Sums, Sums> Play(const History& history) {
        BeginWorld();
        for (const Event& event : history) {
            try {
                Do(event);
            } catch (const Killed&) {
                Kill();
            }
        }
        gate_ = WriteGate();
        gatedFiles.DurableResult = 0;
        Start();
        End();
        return {Recorded(), account_.Now.Recorded};
    }
    Sums Recorded() {
        StatRecords loaded;
        statFile.LoadStatFile(loaded, false);
        Sums sums;
        for (const StatRecord& record : loaded.List) {
            const std::string day = FormatDateIso(DayOf(record.End())).substr(0, 10);
            if (DayOf(record.LogIn) != DayOf(record.End())) sums[{"over midnight", day}];
            if (record.Volume() == 0) continue;
            Bytes& sum = sums[{std::string(record.LineName), day}];
            sum.In += static_cast<std::uint64_t>(record.BytesReceived);
            sum.Out += static_cast<std::uint64_t>(record.BytesTransmitted);
        }
        return sums;
    }
    bool Holds(const History& history) {
        const auto [recorded, moved] = Play(history);
        return recorded == moved && wrongMonth_.empty();
    }
    // The shortest history with the same fault: leaves out what can be left out.
    History Shortest(History history) {
        for (std::size_t length = history.size() / 2; length > 0; length /= 2) {
            for (std::size_t i = 0; i + length <= history.size();) {
                History shorter = history;
                shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(i),
                              shorter.begin() + static_cast<std::ptrdiff_t>(i + length));
                if (Holds(shorter)) {
                    i += length;
                } else {
                    history = std::move(shorter);
                }
            }
        }
        return history;
    }
    void Check(const History& history, const std::string& what) {
        if (Holds(history)) return;
        const History shortest = Shortest(history);
        const auto [recorded, moved] = Play(shortest);
        std::string difference;
        for (const auto& [key, bytes] : moved)
            difference += fmt::format("moved    {} {} {} {}\n", key.first, key.second, bytes.In, bytes.Out);
        for (const auto& [key, bytes] : recorded)
            difference += fmt::format("recorded {} {} {} {}\n", key.first, key.second, bytes.In, bytes.Out);
        FAIL() << what << " " << wrongMonth_ << "\n"
               << Told(shortest) << "\n"
               << difference << folder.Read("Korvalin_Stats.db");
    }

    Account account_;
    WriteGate gate_;
    GatedFiles gatedFiles{gate_};
    GatedJournal gatedJournal{gate_, account_};
    std::unique_ptr<Run> run_;
    std::vector<Adapter> there_, gone_;
    std::uint32_t nextIndex_ = 1;
    bool met_ = false;
    int renames_ = 0;
    bool clockWasSet_ = false;
    std::string wrongMonth_;
    std::set<std::string> exact_;
};

History RandomHistory(unsigned seed) {
    std::mt19937 random(seed);
    // Time and traffic are what most of a history is made of.
    constexpr int weights[] = {30, 30, 6, 3, 3, 4, 4, 2, 1, 3, 3, 2, 1, 8, 3, 3, 3, 1, 1, 2, 1};
    std::discrete_distribution<int> kinds(std::begin(weights), std::end(weights));
    std::uniform_int_distribution<unsigned> any(0, 5000);
    History history = {{Act::Add, any(random)}, {Act::Start}};
    for (int i = 0; i < 40; ++i)
        history.push_back({static_cast<Act>(kinds(random)), any(random), any(random)});
    return history;
}

TEST_F(EveryByte, IsInOneRecordOfItsLineAndDayWhateverHappens) {
    const char* only = std::getenv("KORVALIN_SEED");
    const unsigned first = only != nullptr ? static_cast<unsigned>(std::atoi(only)) : 1;
    const unsigned last = only != nullptr ? first : 10'000;
    for (unsigned seed = first; seed <= last && !HasFatalFailure(); ++seed)
        Check(RandomHistory(seed), fmt::format("KORVALIN_SEED={}", seed));
}

} // namespace
