#include "platform/linux/dialup/ProfileLogin.h"

#include "platform/DialDialog.h"

#include <NetworkManager.h>
#include <array>
#include <string_view>

namespace korvalin {
namespace {

std::string TextOf(const char* text) {
    return text != nullptr ? text : "";
}

/// The items in which a VPN service keeps the login. Without a name for the user it is the setting's own.
struct VpnLogin {
    std::string_view Service; ///< the last part of its name
    const char* User;
    const char* Password;
};

constexpr std::array<VpnLogin, 7> vpnLogins = {{
    {"openvpn", "username", "password"},
    {"pptp", "user", "password"},
    {"l2tp", "user", "password"},
    {"sstp", "user", "password"},
    {"fortisslvpn", "user", "password"},
    {"strongswan", "user", "password"},
    {"vpnc", "Xauth username", "Xauth password"},
}};
constexpr VpnLogin unknownVpn = {"", nullptr, "password"};

VpnLogin LoginOfVpn(NMSettingVpn* vpn) {
    const std::string service = TextOf(nm_setting_vpn_get_service_type(vpn));
    for (const VpnLogin& login : vpnLogins) {
        if (service.substr(service.rfind('.') + 1) == login.Service) return login;
    }
    return unknownVpn;
}

// OpenVPN says itself whether it logs in by certificate, by password or both.
bool VpnTakesLogin(NMSettingVpn* vpn) {
    if (LoginOfVpn(vpn).Service != "openvpn") return true;
    return TextOf(nm_setting_vpn_get_data_item(vpn, "connection-type")).starts_with("password");
}

std::string UserOfVpn(NMSettingVpn* vpn) {
    const char* item = LoginOfVpn(vpn).User;
    return TextOf(item != nullptr ? nm_setting_vpn_get_data_item(vpn, item)
                                  : nm_setting_vpn_get_user_name(vpn));
}

// An item cannot be empty: none is the same.
void SetItem(NMSettingVpn* vpn, const char* name, const std::string& value) {
    nm_setting_vpn_remove_data_item(vpn, name);
    if (!value.empty()) nm_setting_vpn_add_data_item(vpn, name, value.c_str());
}

void StoreVpnLogin(NMSettingVpn* vpn, const Login& login) {
    const VpnLogin items = LoginOfVpn(vpn);
    if (items.User != nullptr) {
        SetItem(vpn, items.User, login.UserName);
    } else {
        g_object_set(vpn, NM_SETTING_VPN_USER_NAME, login.UserName.c_str(), nullptr);
    }
    nm_setting_vpn_remove_secret(vpn, items.Password);
    if (!login.Password.empty()) nm_setting_vpn_add_secret(vpn, items.Password, login.Password.c_str());
    SetItem(vpn, (std::string(items.Password) + "-flags").c_str(), "0");
}

/// The setting of a profile that is no VPN which holds user name and password, by the same three property
/// names.
NMSetting* PlainLoginSetting(NMConnection* profile) {
    for (const GType type :
         {NM_TYPE_SETTING_PPPOE, NM_TYPE_SETTING_GSM, NM_TYPE_SETTING_CDMA, NM_TYPE_SETTING_ADSL}) {
        if (NMSetting* setting = nm_connection_get_setting(profile, type)) return setting;
    }
    return nullptr;
}

} // namespace

bool TakesLogin(NMConnection* profile) {
    NMSettingVpn* vpn = nm_connection_get_setting_vpn(profile);
    return vpn != nullptr ? VpnTakesLogin(vpn) : PlainLoginSetting(profile) != nullptr;
}

std::string LoginSetting(NMConnection* profile) {
    if (!TakesLogin(profile)) return "";
    if (nm_connection_get_setting_vpn(profile) != nullptr) return NM_SETTING_VPN_SETTING_NAME;
    return nm_setting_get_name(PlainLoginSetting(profile));
}

std::string StoredUserName(NMConnection* profile) {
    if (NMSettingVpn* vpn = nm_connection_get_setting_vpn(profile)) return UserOfVpn(vpn);
    NMSetting* setting = PlainLoginSetting(profile);
    if (setting == nullptr) return "";
    char* user = nullptr;
    g_object_get(setting, "username", &user, nullptr);
    std::string text = TextOf(user);
    g_free(user);
    return text;
}

void StoreLogin(NMConnection* profile, const Login& login) {
    if (NMSettingVpn* vpn = nm_connection_get_setting_vpn(profile)) return StoreVpnLogin(vpn, login);
    NMSetting* setting = PlainLoginSetting(profile);
    if (setting == nullptr) return;
    const auto orNothing = [](const std::string& text) { return text.empty() ? nullptr : text.c_str(); };
    g_object_set(setting, "username", orNothing(login.UserName), "password", orNothing(login.Password),
                 "password-flags", NM_SETTING_SECRET_FLAG_NONE, nullptr);
}

} // namespace korvalin
