#include "platform/linux/dialup/DialProfiles.h"

#include "platform/linux/dialup/ProfileNames.h"

#include <fmt/format.h>

#include <NetworkManager.h>
#include <algorithm>
#include <array>
#include <string_view>

namespace korvalin {
namespace {

constexpr std::array<std::string_view, 7> dialUpTypes = {
    NM_SETTING_GSM_SETTING_NAME,       NM_SETTING_CDMA_SETTING_NAME, NM_SETTING_PPPOE_SETTING_NAME,
    NM_SETTING_ADSL_SETTING_NAME,      NM_SETTING_VPN_SETTING_NAME,  NM_SETTING_WIREGUARD_SETTING_NAME,
    NM_SETTING_BLUETOOTH_SETTING_NAME,
};

std::string TextOf(const char* text) {
    return text != nullptr ? text : "";
}

bool IsNetworkOverBluetooth(NMConnection* profile) {
    NMSettingBluetooth* bluetooth = nm_connection_get_setting_bluetooth(profile);
    return bluetooth != nullptr &&
           TextOf(nm_setting_bluetooth_get_connection_type(bluetooth)) != NM_SETTING_BLUETOOTH_TYPE_DUN;
}

// Profiles that stand for links made by others cannot be dialed.
bool IsEntry(NMRemoteConnection* profile) {
    return IsDialUp(NM_CONNECTION(profile)) &&
           (nm_remote_connection_get_flags(profile) & NM_SETTINGS_CONNECTION_FLAG_EXTERNAL) == 0;
}

std::string NumberOf(NMConnection* profile) {
    if (NMSettingCdma* cdma = nm_connection_get_setting_cdma(profile))
        return TextOf(nm_setting_cdma_get_number(cdma));
    NMSettingGsm* gsm = nm_connection_get_setting_gsm(profile);
    if (gsm == nullptr) return "";
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS // old profiles have it
        const std::string number = TextOf(nm_setting_gsm_get_number(gsm));
    G_GNUC_END_IGNORE_DEPRECATIONS
    const std::string accessPoint = TextOf(nm_setting_gsm_get_apn(gsm));
    if (number.empty() || accessPoint.empty()) return number + accessPoint;
    return fmt::format("{} ({})", number, accessPoint);
}

std::string DeviceTypeOf(NMConnection* profile) {
    const std::string type = TextOf(nm_connection_get_connection_type(profile));
    if (type == NM_SETTING_VPN_SETTING_NAME || type == NM_SETTING_WIREGUARD_SETTING_NAME) return "vpn";
    if (type == NM_SETTING_PPPOE_SETTING_NAME) return "PPPoE";
    if (NMSettingAdsl* adsl = nm_connection_get_setting_adsl(profile)) {
        const bool overEthernet =
            TextOf(nm_setting_adsl_get_protocol(adsl)) == NM_SETTING_ADSL_PROTOCOL_PPPOE;
        return overEthernet ? "PPPoE" : "ATM";
    }
    return "modem";
}

} // namespace

bool IsDialUp(NMConnection* profile) {
    const std::string type = TextOf(nm_connection_get_connection_type(profile));
    return std::find(dialUpTypes.begin(), dialUpTypes.end(), type) != dialUpTypes.end() &&
           !IsNetworkOverBluetooth(profile);
}

std::vector<DialProfile> ReadDialProfiles(NMClient* client) {
    std::vector<DialProfile> entries;
    if (client == nullptr) return entries;
    const GPtrArray* profiles = nm_client_get_connections(client);
    std::vector<ProfileName> names;
    for (guint i = 0; i < profiles->len; ++i) {
        auto* profile = static_cast<NMRemoteConnection*>(profiles->pdata[i]);
        if (!IsEntry(profile)) continue;
        names.push_back({TextOf(nm_connection_get_id(NM_CONNECTION(profile))),
                         TextOf(nm_connection_get_uuid(NM_CONNECTION(profile)))});
        entries.push_back({"", profile});
    }
    std::vector<std::string> unique = UniqueNames(names);
    for (std::size_t i = 0; i < entries.size(); ++i)
        entries[i].Name = std::move(unique[i]);
    return entries;
}

NMRemoteConnection* FindProfile(NMClient* client, const std::string& entryName) {
    for (const DialProfile& entry : ReadDialProfiles(client)) {
        if (entry.Name == entryName) return entry.Profile;
    }
    return nullptr;
}

PhoneEntry DescribeProfile(NMConnection* profile) {
    return {"", NumberOf(profile), DeviceTypeOf(profile)};
}

} // namespace korvalin
