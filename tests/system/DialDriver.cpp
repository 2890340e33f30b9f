// The back end on NetworkManager without the program around it, for tests and measurements.
#include "platform/DialDialog.h"
#include "platform/Events.h"
#include "platform/linux/dialup/NetworkManagerInternet.h"
#include "platform/linux/dialup/NetworkManagerLines.h"
#include "platform/linux/dialup/NetworkManagerRas.h"
#include "platform/linux/system/SystemClock.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <thread>

namespace {

using namespace korvalin;

constexpr const char* stageNames[] = {"preparing", "connecting", "logging in", "getting address"};

/// A clock whose awake time passes so many times faster.
class FastClock : public SystemClock {
  public:
    double Rate = 1;
    double AwakeSeconds() override { return SystemClock::AwakeSeconds() * Rate; }
};

class SleepingEvents : public Events {
  public:
    int Pumped = 0;
    void ProcessPending() override { ++Pumped; }
    void Sleep(int milliseconds) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
};

/// Prints what is shown, and answers as it was told.
class PrintedDialog : public DialDialog {
  public:
    std::optional<Login> Answer;
    std::string CancelAt;
    /// Runs while the login is asked for.
    std::function<void(const std::string& entryName)> WhenAsked = [](const std::string&) {};

    void Begin(const std::string& entryName) override { fmt::print("begin {}\n", entryName); }
    void ShowStage(DialStage stage) override {
        fmt::print("stage {}\n", stageNames[static_cast<int>(stage)]);
        cancelled_ = cancelled_ || CancelAt == stageNames[static_cast<int>(stage)];
    }
    bool Cancelled() const override { return cancelled_ || CancelAt == "begin"; }
    void End() override { fmt::print("end\n"); }
    void ShowFailure(const std::string& entryName, int error) override {
        fmt::print("failed {} {}\n", entryName, error);
    }
    std::optional<Login> AskLogin(const std::string& entryName, const std::string& userName) override {
        fmt::print("asked {} for {}\n", entryName, userName);
        WhenAsked(entryName);
        return Answer;
    }

  private:
    bool cancelled_ = false;
};

struct BackEnd {
    FastClock Clock;
    SleepingEvents Events;
    PrintedDialog Dialog;
    NetworkManagerClient Client{Clock};
    NetworkManagerLines Lines{Client, Clock};
    NetworkManagerRas Ras{Client, Lines};
    NetworkManagerInternet Internet{{Client, Lines, Clock}};
};

// Every change of the connected state, until somebody ends it.
void FollowState(Internet& internet) {
    for (std::uint32_t last = ~0U;; std::this_thread::sleep_for(std::chrono::microseconds(300))) {
        const std::uint32_t flags = internet.GetConnectedState().Flags;
        if (flags != last) fmt::print("{:#x}\n", flags);
        last = flags;
    }
}

// As passes of the reader: everything about every line.
void ReadLines(Ras& ras, int passes) {
    for (int i = 0; i < passes; ++i) {
        for (const RasConnection& connection : ras.EnumConnections()) {
            static_cast<void>(ras.GetConnectionStatistics(connection.Handle));
            static_cast<void>(ras.GetConnectStatus(connection.Handle));
        }
    }
}

// Runs a command that changes an entry's number, and waits until the change is seen.
void ChangeEntry(BackEnd& system, const std::string& entryName, const std::string& command) {
    const auto number = [&] { return system.Ras.GetEntryProperties(entryName).value().LocalPhoneNumber; };
    const std::string before = number();
    if (std::system(command.c_str()) != 0) fmt::print("cannot run {}\n", command);
    for (int looks = 0; looks < 200 && number() == before; ++looks)
        system.Events.Sleep(20);
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app;
    app.require_subcommand(1);
    BackEnd system;
    std::string name, user, password, change;
    std::uint32_t flags = 0;
    int passes = 1;
    app.add_subcommand("follow");
    app.add_subcommand("measure")->add_option("passes", passes);
    CLI::App* dial = app.add_subcommand("dial");
    dial->add_option("name", name)->required();
    dial->add_option("--flags", flags);
    dial->add_option("--user", user);
    dial->add_option("--password", password);
    dial->add_option("--when-asked", change, "a command that changes the entry");
    dial->add_option("--cancel-at", system.Dialog.CancelAt);
    dial->add_option("--clock-rate", system.Clock.Rate);
    CLI11_PARSE(app, argc, argv);

    setvbuf(stdout, nullptr, _IOLBF, 0);
    if (app.got_subcommand("follow")) FollowState(system.Internet);
    if (app.got_subcommand("measure")) ReadLines(system.Ras, passes);
    if (!dial->parsed()) return 0;
    system.Internet.Dialer().Plug(system.Events);
    system.Internet.Dialer().PlugDialog(&system.Dialog);
    if (dial->count("--user") > 0) system.Dialog.Answer = Login{user, password};
    if (!change.empty())
        system.Dialog.WhenAsked = [&](const std::string& entry) { ChangeEntry(system, entry, change); };
    const DialResult result = system.Internet.Dial(name, flags);
    fmt::print("result {} {}\n", result.Error, result.Connection > 0 ? "line" : "none");
    if (system.Events.Pumped > 0) fmt::print("windows alive\n");
    return 0;
}
