#include "inet/ConnectionState.h"

#include "lang/Language.h"

#include <array>

namespace korvalin {
namespace {

bool HasFlag(Internet& internet, std::uint32_t flag) {
    return (internet.GetConnectedState().Flags & flag) != 0;
}

struct InfoLine {
    std::uint32_t Flag;
    int TextNumber;
    const char* End;
};

// In the order in which the facts are listed.
constexpr std::array<InfoLine, 7> infoLines = {{{InternetConnectionConfigured, 1, "\n"},
                                                {InternetConnectionLan, 2, "\n"},
                                                {InternetConnectionProxy, 3, " \n"},
                                                {InternetConnectionModem, 4, " \n"},
                                                {InternetConnectionOffline, 5, " \n"},
                                                {InternetConnectionModemBusy, 6, " \n"},
                                                {InternetRasInstalled, 7, ""}}};

} // namespace

bool IsInternetViaModem(Internet& internet) {
    return HasFlag(internet, InternetConnectionModem);
}
bool IsInternetViaLan(Internet& internet) {
    return HasFlag(internet, InternetConnectionLan);
}
bool IsInternetViaProxy(Internet& internet) {
    return HasFlag(internet, InternetConnectionProxy);
}
bool IsRasInstalled(Internet& internet) {
    return HasFlag(internet, InternetRasInstalled);
}
bool IsOnline(Internet& internet) {
    return internet.GetConnectedState().Online;
}

std::string ConnectionInfoText(Internet& internet, Language& language) {
    const auto text = [&language](int number) { return language.Lng("modConnInfo", number); };
    const ConnectedState state = internet.GetConnectedState();
    if (!state.Online) return text(8);
    std::string info;
    for (const InfoLine& line : infoLines) {
        if ((state.Flags & line.Flag) != 0) info += text(line.TextNumber) + line.End;
    }
    return info;
}

} // namespace korvalin
