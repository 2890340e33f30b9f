#include "traffic/Dialing.h"

#include "base/FlagGuard.h"
#include "errors/Errors.h"
#include "platform/Events.h"
#include "settings/Settings.h"
#include "traffic/LineRecord.h"
#include "traffic/PhoneNumberGuard.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr std::size_t mostConnections = 256; // a list of more is not taken at all
constexpr int lastPass = 10;
constexpr int passMilliseconds = 100;
// InternetDialUnattended as callers pass it, with the upper half set.
constexpr std::uint32_t unattended = 0xFFFF0000U | InternetDialUnattended;
constexpr std::string_view vpnDevice = "vpn";

} // namespace

void Dialing::DialEntry(const std::string& entryName) {
    if (busy_) return;
    const FlagGuard busy(busy_);
    parts_.Errors.Step("DialEntry", [&] {
        const bool anotherIsUp = parts_.LineState.OnDialUp();
        DialResult result = Dial(entryName, anotherIsUp ? InternetDialForcePrompt : unattended);
        if (result.Error == ErrorAuthenticationFailure) result = Dial(entryName, InternetDialForcePrompt);
        if (result.Error == 0 && result.Connection != 0) parts_.Settings.Set(Keys::LineLast, entryName);
    });
}

// The number is looked at before every attempt: it may have changed during the one before, or while that
// asked for the login.
DialResult Dialing::Dial(const std::string& entryName, std::uint32_t flags) {
    DialResult result{ErrorRetry};
    while (result.Error == ErrorRetry) {
        if (!parts_.PhoneNumberGuard.CheckPhoneNumber(entryName) || stopped_) return {ErrorCancelled};
        result = parts_.Internet.Dial(entryName, flags);
    }
    return result;
}

std::vector<RasConnection> Dialing::Connections() {
    std::vector<RasConnection> connections = parts_.Ras.EnumConnections();
    if (connections.size() > mostConnections) connections.clear();
    return connections;
}

void Dialing::MONHangUp() {
    if (busy_) return;
    const FlagGuard busy(busy_);
    parts_.Errors.Step("MONHangUp", [&] {
        int pass = 0;
        while (pass <= lastPass) {
            ++pass;
            const std::vector<RasConnection> connections = Connections();
            if (connections.empty()) break;
            parts_.Ras.HangUp(connections.front().Handle);
            parts_.Events.Sleep(passMilliseconds);
        }
        if (pass >= lastPass) parts_.Errors.WriteErrorLog("MONHangUp failed", "uncritical Error");
    });
}

// While adapters are monitored nobody else reads the dial-up connections.
bool Dialing::ConnectionUp() {
    if (parts_.LineState.MonitoredLineType == LineType::Ras) return parts_.LineState.AnyLineConnected;
    const std::vector<RasConnection> connections = Connections();
    return std::any_of(connections.begin(), connections.end(), [&](const RasConnection& connection) {
        return parts_.Ras.GetConnectStatus(connection.Handle) == RascsConnected;
    });
}

DialChoices Dialing::Choices() {
    DialChoices choices;
    choices.HangUp = ConnectionUp();
    if (choices.HangUp) return choices;
    TableFromOne<std::string> names;
    parts_.PhoneBook.RASGetEntries(names);
    for (std::string& name : names) {
        const auto entry = parts_.Ras.GetEntryProperties(name);
        const bool isVpn = entry && entry->DeviceType == vpnDevice;
        if (!name.empty() && !isVpn) choices.Entries.push_back(std::move(name));
    }
    const std::string last = parts_.Settings.Get(Keys::LineLast);
    if (std::find(choices.Entries.begin(), choices.Entries.end(), last) != choices.Entries.end())
        choices.Quick = last;
    return choices;
}

} // namespace korvalin
