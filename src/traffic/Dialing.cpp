#include "traffic/Dialing.h"

#include "base/FlagGuard.h"
#include "errors/Errors.h"
#include "platform/Events.h"
#include "platform/Internet.h"
#include "settings/Settings.h"
#include "traffic/LineRecord.h"
#include "traffic/PhoneNumberGuard.h"

#include <algorithm>

namespace korvalin {
namespace {

constexpr std::size_t mostConnections = 256;
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
        std::int32_t connection = 0;
        int result = Dial(entryName, anotherIsUp ? InternetDialForcePrompt : unattended, connection);
        if (result == ErrorAuthenticationFailure)
            result = Dial(entryName, InternetDialForcePrompt, connection);
        if (result == 0 && connection != 0) parts_.Settings.Set(Keys::LineLast, entryName);
    });
}

// The number is looked at before every attempt: it may have changed during the one before, or while that
// asked for the login.
int Dialing::Dial(const std::string& entryName, std::uint32_t flags, std::int32_t& connection) {
    int result = ErrorRetry;
    while (result == ErrorRetry) {
        connection = 0;
        if (!parts_.PhoneNumberGuard.CheckPhoneNumber(entryName) || stopped_) return ErrorCancelled;
        result = parts_.Internet.Dial(entryName, flags, connection);
    }
    return result;
}

std::vector<RasConnection> Dialing::Connections() {
    std::vector<RasConnection> connections(mostConnections);
    std::uint32_t count = 0;
    if (parts_.Ras.EnumConnections(connections, count) != 0) count = 0;
    connections.resize(std::min<std::size_t>(count, mostConnections));
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
            static_cast<void>(parts_.Ras.HangUp(connections.front().Handle)); // the next pass looks anew
            parts_.Events.Sleep(passMilliseconds);
        }
        if (pass >= lastPass) parts_.Errors.WriteErrorLog("MONHangUp failed", "uncritical Error");
    });
}

// While adapters are monitored nobody else reads the dial-up connections.
bool Dialing::ConnectionUp() {
    if (parts_.LineState.MonitoredLineType == "RAS") return parts_.LineState.AnyLineConnected;
    const std::vector<RasConnection> connections = Connections();
    return std::any_of(connections.begin(), connections.end(), [&](const RasConnection& connection) {
        std::uint32_t state = 0;
        return parts_.Ras.GetConnectStatus(connection.Handle, state) == 0 && state == RascsConnected;
    });
}

DialChoices Dialing::Choices() {
    DialChoices choices;
    choices.HangUp = ConnectionUp();
    if (choices.HangUp) return choices;
    TableFromOne<std::string> names;
    parts_.PhoneBook.RASGetEntries(names);
    for (std::string& name : names) {
        PhoneEntry entry;
        static_cast<void>(parts_.Ras.GetEntryProperties(name, entry)); // what cannot be read is no VPN
        if (!name.empty() && entry.DeviceType != vpnDevice) choices.Entries.push_back(std::move(name));
    }
    const std::string last = parts_.Settings.Get(Keys::LineLast);
    if (std::find(choices.Entries.begin(), choices.Entries.end(), last) != choices.Entries.end())
        choices.Quick = last;
    return choices;
}

} // namespace korvalin
