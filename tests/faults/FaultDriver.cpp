// The core over the real files and stores and a made-up machine, for operations that are to meet faults:
// faultdriver FOLDER OPERATION. The exit code is 3 when the operation says that it has failed; what it shows
// stands on the standard error.
#include "fakes/FakeClock.h"
#include "fakes/FakeHttp.h"
#include "fakes/FakeNetwork.h"
#include "fakes/FakeScreen.h"
#include "fakes/FakeSystem.h"
#include "platform/MessageBoxes.h"
#include "platform/linux/files/FileLocks.h"
#include "platform/linux/files/PosixFiles.h"
#include "platform/linux/store/SqliteJournal.h"
#include "platform/linux/store/SqliteRegistry.h"
#include "program/Program.h"

#include <fmt/format.h>

#include <cstdlib>
#include <dlfcn.h>

using namespace korvalin;

namespace {

namespace fs = std::filesystem;

constexpr int failed = 3;

// What an adapter has received since the system's start.
constexpr std::uint64_t CountedAt(int step) {
    return 5000 + 1000 * static_cast<std::uint64_t>(step);
}

/// Tells on the standard error what is no question; every question is answered Yes, but for whether to end
/// the program.
class ToldBoxes : public MessageBoxes {
  public:
    MessageAnswer Show(const std::string& text, const std::string&, MessageIcon,
                       MessageButtons buttons) override {
        if (buttons == MessageButtons::Ok) fmt::print(stderr, "{}\n", text);
        return buttons == MessageButtons::YesNo ? MessageAnswer::Yes : MessageAnswer::No;
    }
    void ShowWaiting(const std::string&, const std::string&) override {}
    void CloseWaiting() override {}
};

/// One run of the program, `days` after noon of 15 March 2024.
struct Run {
    Run(const fs::path& folder, const char* executable, double days, const char* boot = "boot 1")
        : Time(DateSerial(2024, 3, 15) + 0.5 + days),
          Store(folder / "config/registry.db", AutostartFile(Posix, folder / "config"), Time),
          Notes("machine", boot, folder / "run") {
        Places.Executable = folder / "program" / executable;
        Places.AppData = folder / "share";
        Core.emplace(Ports{Store, Tables, State, Dialer, Time, Pending, Boxes, Sizes, Places, Person,
                           Instances, Posix, Recording, Notes, Wireless, Web, Signed, Addresses},
                     Locale());
        Core->LogNotes(Store.TakeNotes());
        static_cast<void>(Core->language.InitProgramTexts());
        Core->LoadRecords();
    }

    // The adapters as they are at a step, and a pass that sees them.
    void Step(int step, bool wirelessIsUp = true) {
        if (wirelessIsUp) wireless_ = step;
        Tables.Rows.clear();
        Tables.Add("eth0", CountedAt(step), 0).HasHardware = true;
        Tables.Add("wlan0", CountedAt(wireless_), 0).HasHardware = true;
        if (!wirelessIsUp) Tables.Rows[1].OperStatus = OperationalStatus::Disconnected;
        Time.Advance(61); // longer than the journal is left alone
        Mark(fmt::format("seen {} {}", step, wireless_));
        Core->lineMonitor.Get_Bytes_Transmitted();
        Mark(fmt::format("kept {} {}", step, wireless_));
    }
    int End() {
        Core->journalKeeper.RecordOpenLines(CloseReason::SystemEnd);
        return Core->recorder.HasPending() ? failed : 0;
    }
    // For the log of the preloaded library, if there is one.
    static void Mark(const std::string& text) {
        static const auto mark = reinterpret_cast<void (*)(const char*)>(dlsym(RTLD_DEFAULT, "FaultMark"));
        if (mark != nullptr) mark(text.c_str());
    }

    FakeClock Time;
    PosixFiles Posix;
    SqliteRegistry Store;
    FakeNetworkTables Tables;
    FakeInternet State;
    FakeRas Dialer;
    FakeEvents Pending{Time};
    ToldBoxes Boxes;
    FakeScreen Sizes;
    FakeShell Places;
    FakeUser Person;
    FakeInstanceLock Instances;
    FileRecordingLock Recording;
    SqliteJournal Notes;
    FakeNetworks Wireless;
    FakeHttp Web;
    FakeSignatures Signed;
    FakeAddressReader Addresses;
    std::optional<Program> Core;

  private:
    int wireless_ = 0; // the last step in which it was up
};

int Record(const fs::path& folder, const std::string& how) {
    Run run(folder, "Korvalin.exe", how == "day" ? 0.5 - 200 / SecondsPerDay : 0.01);
    run.Core->LoadStatistics();
    for (int step = 3; step <= 10; ++step)
        run.Step(step, how != "record" || step < 5 || step > 6);
    return how == "journal" ? 0 : run.End();
}

// The next start, as usual; what the adapters have counted meanwhile, or since the system's start, is theirs.
int Next(const fs::path& folder, bool newBoot) {
    Run run(folder, "Korvalin.exe", 2, newBoot ? "boot 2" : "boot 1");
    run.Core->LoadStatistics();
    for (const int step : {100, 101})
        run.Step(step);
    const int code = run.End();
    StatRecords records;
    run.Core->statFile.LoadStatFile(records, false);
    fmt::print("{}\n{}\n", run.Core->dataFolder.GetDataPath().string(),
               run.Core->settings.Get(Keys::ChartMax));
    for (const StatRecord& record : records.List)
        fmt::print("{}\t{}\t{}\t{}\n", record.LineName, FormatDateIso(record.LogIn),
                   FormatDateIso(record.End()), record.BytesReceived);
    return code;
}

int Delete(const fs::path& folder) {
    Run run(folder, "Korvalin.exe", 1);
    StatRecords records;
    run.Core->statFile.LoadStatFile(records, false);
    std::vector<std::uint32_t> odd;
    for (std::uint32_t i = 1; i < records.List.size(); i += 2)
        odd.push_back(i);
    return run.Core->statFile.DeleteRecords(records, odd) == StatFile::Deletion::Done ? 0 : failed;
}

// As the settings dialog does it while lines are recorded.
int Move(const fs::path& folder) {
    Run run(folder, "Korvalin.exe", 0.01);
    Program& core = *run.Core;
    core.LoadStatistics();
    run.Step(3);
    const bool moved = core.dataFolder.ChangeDataPath(core.dataFolder.GetDataPath(), folder / "moved", true);
    run.Step(4);
    const int code = run.End();
    return moved ? code : failed;
}

// The program that is there hands over to the new one, which installs itself.
int Update(const fs::path& folder) {
    if (!Run(folder, "Korvalin.exe", 1).Core->updateInstallation.Run()) return failed;
    return Run(folder, "Korvalin_new.exe", 1).Core->updateInstallation.Run() ? 0 : failed;
}

int Do(const fs::path& folder, const std::string& operation) {
    if (operation == "begin") {
        Run run(folder, "Korvalin.exe", 0);
        run.Core->settings.Set(Keys::ChartMax, 77);
        run.Core->LoadStatistics();
        run.Step(0);
        run.Step(1);
        return run.End();
    }
    if (operation == "record" || operation == "day" || operation == "journal")
        return Record(folder, operation);
    if (operation == "next" || operation == "boot") return Next(folder, operation == "boot");
    if (operation == "delete") return Delete(folder);
    if (operation == "move") return Move(folder);
    if (operation == "update") return Update(folder);
    if (operation == "home") { // where the first start of a new release keeps its data
        fmt::print("{}\n", Run(folder, "Korvalin.exe", 1).Core->dataFolder.GetDataPath().string());
        return 0;
    }
    return EXIT_FAILURE;
}

} // namespace

int main(int count, char** arguments) {
    return count == 3 ? Do(arguments[1], arguments[2]) : EXIT_FAILURE;
}
