#include "platform/linux/system/LinuxSystem.h"

#include "platform/linux/dialup/NetworkManagerInternet.h"
#include "platform/linux/dialup/NetworkManagerLines.h"
#include "platform/linux/dialup/NetworkManagerNetworks.h"
#include "platform/linux/dialup/NetworkManagerRas.h"
#include "platform/linux/files/FileLocks.h"
#include "platform/linux/files/PosixFiles.h"
#include "platform/linux/files/WholeFile.h"
#include "platform/linux/netlink/NetlinkNetworkTables.h"
#include "platform/linux/store/SqliteJournal.h"
#include "platform/linux/store/SqliteRegistry.h"
#include "platform/linux/system/LinuxShell.h"
#include "platform/linux/system/PasswdUser.h"
#include "platform/linux/system/SystemClock.h"
#include "platform/linux/system/XdgFolders.h"
#include "platform/linux/web/CurlAddress.h"
#include "platform/linux/web/CurlHttp.h"
#include "platform/linux/web/SodiumSignatures.h"

namespace korvalin {
namespace {

// The first line of the first file that has one.
std::string FirstLine(std::initializer_list<const char*> files) {
    for (const char* file : files) {
        const std::string text = ReadWholeFile(file).value_or("");
        if (!text.empty()) return text.substr(0, text.find('\n'));
    }
    return {};
}

SqliteJournal MakeJournal() {
    return {FirstLine({"/etc/machine-id", "/var/lib/dbus/machine-id"}),
            FirstLine({"/proc/sys/kernel/random/boot_id"}), XdgRuntimeFolder()};
}

} // namespace

struct LinuxSystem::BackEnds {
    SystemClock Clock;
    LinuxShell Shell;
    PosixFiles Files;
    SqliteRegistry Registry{ConfigFolder() / "registry.db", {Files, AutostartFolder()}, Clock};
    NetlinkNetworkTables NetworkTables;
    NetworkManagerClient NetworkManager{Clock};
    NetworkManagerLines Lines{NetworkManager, Clock};
    NetworkManagerRas Ras{NetworkManager, Lines};
    NetworkManagerInternet Internet{{NetworkManager, Lines, Clock}};
    PasswdUser User;
    // An update hands over from one executable to another: each name has a lock of its own.
    FileInstanceLock InstanceLock{ConfigFolder(), Shell.ExecutablePath().filename().string()};
    FileRecordingLock RecordingLock;
    SqliteJournal Journal = MakeJournal();
    NetworkManagerNetworks Networks{NetworkManager};
    CurlHttp Http;
    SodiumSignatures Signatures;
    CurlAddressReader AddressReader;
};

LinuxSystem::LinuxSystem() : backEnds_(std::make_unique<BackEnds>()) {}
LinuxSystem::~LinuxSystem() = default;

Ports LinuxSystem::PortsWith(Events& events, MessageBoxes& messageBoxes, Screen& screen) {
    BackEnds& b = *backEnds_;
    b.Internet.Dialer().Plug(events);
    return {b.Registry,      b.NetworkTables, b.Internet, b.Ras,  b.Clock,        events,
            messageBoxes,    screen,          b.Shell,    b.User, b.InstanceLock, b.Files,
            b.RecordingLock, b.Journal,       b.Networks, b.Http, b.Signatures,   b.AddressReader};
}

void LinuxSystem::PlugDialDialog(DialDialog* dialog) {
    backEnds_->Internet.Dialer().PlugDialog(dialog);
}

Clock& LinuxSystem::SystemTime() {
    return backEnds_->Clock;
}

Shell& LinuxSystem::UserShell() {
    return backEnds_->Shell;
}

bool LinuxSystem::SettingsAreKept() const {
    return backEnds_->Registry.IsKept();
}

std::vector<std::string> LinuxSystem::TakeNotes() {
    return backEnds_->Registry.TakeNotes();
}

} // namespace korvalin
