#include "platform/linux/LinuxSystem.h"

#include "errors/Errors.h"
#include "platform/linux/AutostartRegistry.h"
#include "platform/linux/FlockInstanceLock.h"
#include "platform/linux/LinuxShell.h"
#include "platform/linux/NetlinkNetworkTables.h"
#include "platform/linux/NoRas.h"
#include "platform/linux/PasswdUser.h"
#include "platform/linux/PosixFiles.h"
#include "platform/linux/RouteInternet.h"
#include "platform/linux/SqliteRegistry.h"
#include "platform/linux/SystemClock.h"
#include "platform/linux/XdgFolders.h"

#include <vector>

namespace korvalin {

struct LinuxSystem::BackEnds {
    std::vector<std::string> Notes;
    std::filesystem::path ConfigFolder = XdgConfigHome() / "korvalin";
    LinuxShell Shell;
    PosixFiles Files;
    SqliteRegistry Store{ConfigFolder / "registry.db", [this](const std::string& note) { Notes.push_back(note); }};
    AutostartRegistry Registry{Store, Files, XdgConfigHome() / "autostart"};
    NetlinkNetworkTables NetworkTables;
    RouteInternet Internet;
    NoRas Ras;
    SystemClock Clock;
    PasswdUser User;
    // An update hands over from one executable to another: each name has a lock of its own.
    FlockInstanceLock InstanceLock{ConfigFolder / ("instance-" + Shell.ExecutablePath().filename().string() + ".lock")};
};

LinuxSystem::LinuxSystem() : backEnds_(std::make_unique<BackEnds>()) {}
LinuxSystem::~LinuxSystem() = default;

Ports LinuxSystem::PortsWith(Events& events, MessageBoxes& messageBoxes, Screen& screen) {
    BackEnds& b = *backEnds_;
    return {b.Registry, b.NetworkTables, b.Internet, b.Ras,          b.Clock, events,
            messageBoxes, screen,        b.Shell,    b.User, b.InstanceLock, b.Files};
}

Clock& LinuxSystem::SystemTime() { return backEnds_->Clock; }

void LinuxSystem::TellNotes(Errors& errors) {
    for (const std::string& note : backEnds_->Notes) errors.WriteErrorLog(note, "settings store");
    backEnds_->Notes.clear();
}

} // namespace korvalin
