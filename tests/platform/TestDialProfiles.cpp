#include "platform/DialDialog.h"
#include "platform/linux/dialup/DialProfiles.h"
#include "platform/linux/dialup/GObjectPointer.h"
#include "platform/linux/dialup/ProfileLogin.h"
#include "platform/linux/dialup/ProfileNames.h"

#include <NetworkManager.h>

using namespace korvalin;

namespace {

TEST(DialProfiles, GivesEachProfileANameOfItsOwn) {
    struct {
        const char* What;
        std::vector<ProfileName> Profiles;
        std::vector<std::string> Names;
    } const rows[] = {
        {"different", {{"A", "1"}, {"B", "2"}}, {"A", "B"}},
        {"the lowest identifier keeps the name",
         {{"A", "2"}, {"A", "1"}, {"A", "3"}},
         {"A (2)", "A", "A (3)"}},
        {"a counted name that is taken", {{"A", "1"}, {"A", "2"}, {"A (2)", "9"}}, {"A", "A (3)", "A (2)"}},
        {"a counted name that is twice itself",
         {{"A", "1"}, {"A", "2"}, {"A (2)", "3"}, {"A (2)", "4"}},
         {"A", "A (3)", "A (2)", "A (2) (2)"}},
        {"blanks make no difference", {{"A", "1"}, {" A ", "2"}, {"  ", "3"}}, {"A", "A (2)", "3"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(UniqueNames(row.Profiles), row.Names) << row.What;
}

// A profile of one kind, with the settings that belong to it.
class Profile {
  public:
    explicit Profile(const char* type) : connection_(nm_simple_connection_new()) {
        NMSetting* setting = nm_setting_connection_new();
        g_object_set(setting, NM_SETTING_CONNECTION_TYPE, type, NM_SETTING_CONNECTION_ID, "profile", nullptr);
        nm_connection_add_setting(Get(), setting);
    }
    NMConnection* Get() const { return connection_.get(); }

    template <typename... Values>
    NMSetting* With(NMSetting* setting, Values... values) {
        g_object_set(setting, values..., nullptr);
        nm_connection_add_setting(Get(), setting);
        return setting;
    }

  private:
    GObjectPointer<NMConnection> connection_;
};

Profile Gsm(const char* number, const char* accessPoint) {
    Profile profile("gsm");
    profile.With(nm_setting_gsm_new(), "number", number, "apn", accessPoint);
    return profile;
}

Profile Vpn(const char* service, const char* connectionType) {
    Profile profile("vpn");
    NMSetting* setting = profile.With(nm_setting_vpn_new(), "service-type", service);
    if (connectionType != nullptr)
        nm_setting_vpn_add_data_item(NM_SETTING_VPN(setting), "connection-type", connectionType);
    return profile;
}

TEST(DialProfiles, TellsDeviceTypeAndNumber) {
    Profile cdma("cdma"), pppoe("pppoe"), dun("bluetooth"), wireguard("wireguard"), adslOverAtm("adsl"),
        adsl("adsl");
    cdma.With(nm_setting_cdma_new(), "number", "#777");
    pppoe.With(nm_setting_pppoe_new(), "username", "u", "service", "s");
    dun.With(nm_setting_bluetooth_new(), "type", "dun");
    dun.With(nm_setting_gsm_new(), "apn", "net");
    adslOverAtm.With(nm_setting_adsl_new(), "protocol", "pppoa");
    adsl.With(nm_setting_adsl_new(), "protocol", "pppoe");
    const Profile gsm = Gsm("*99#", "internet"), changed = Gsm("*99#", "evil"),
                  onlyApn = Gsm(nullptr, "internet"), onlyNumber = Gsm("*99#", nullptr),
                  vpn = Vpn("org.freedesktop.NetworkManager.vpnc", nullptr);
    struct {
        const Profile& Told;
        const char *DeviceType, *Number;
    } const rows[] = {
        {gsm, "modem", "*99# (internet)"},
        {changed, "modem", "*99# (evil)"},
        {onlyApn, "modem", "internet"},
        {onlyNumber, "modem", "*99#"},
        {cdma, "modem", "#777"},
        {dun, "modem", "net"},
        {pppoe, "PPPoE", ""},
        {adsl, "PPPoE", ""},
        {adslOverAtm, "ATM", ""},
        {vpn, "vpn", ""},
        {wireguard, "vpn", ""},
    };
    for (const auto& row : rows) {
        const PhoneEntry entry = DescribeProfile(row.Told.Get());
        EXPECT_EQ(entry.DeviceType, row.DeviceType);
        EXPECT_EQ(entry.LocalPhoneNumber, row.Number);
        EXPECT_EQ(entry.AreaCode, "");
        EXPECT_TRUE(IsDialUp(row.Told.Get())) << row.DeviceType;
    }
    Profile network("bluetooth"), ethernet("802-3-ethernet");
    network.With(nm_setting_bluetooth_new(), "type", "panu");
    EXPECT_FALSE(IsDialUp(network.Get()));
    EXPECT_FALSE(IsDialUp(ethernet.Get()));
}

TEST(ProfileLogin, IsKeptWhereTheKindOfLineLooksForIt) {
    const Login login{"ich", "geheim"};
    Profile pppoe("pppoe"), wireguard("wireguard");
    NMSetting* dsl = pppoe.With(nm_setting_pppoe_new(), "username", "u", "password-flags",
                                static_cast<guint>(NM_SETTING_SECRET_FLAG_AGENT_OWNED));
    EXPECT_EQ(StoredUserName(pppoe.Get()), "u");
    StoreLogin(pppoe.Get(), login);
    EXPECT_EQ(StoredUserName(pppoe.Get()), "ich");
    EXPECT_STREQ(nm_setting_pppoe_get_password(NM_SETTING_PPPOE(dsl)), "geheim");
    EXPECT_EQ(nm_setting_pppoe_get_password_flags(NM_SETTING_PPPOE(dsl)), NM_SETTING_SECRET_FLAG_NONE);
    EXPECT_EQ(LoginSetting(pppoe.Get()), "pppoe");
    EXPECT_EQ(LoginSetting(Gsm("1", "a").Get()), "gsm");
    EXPECT_FALSE(TakesLogin(wireguard.Get()));

    struct {
        const char *Service, *ConnectionType, *User, *Password;
        bool TakesLogin;
    } const rows[] = {
        {"org.freedesktop.NetworkManager.openvpn", "password", "username", "password", true},
        {"org.freedesktop.NetworkManager.openvpn", "password-tls", "username", "password", true},
        {"org.freedesktop.NetworkManager.openvpn", "tls", "username", "password", false},
        {"org.freedesktop.NetworkManager.pptp", nullptr, "user", "password", true},
        {"org.freedesktop.NetworkManager.vpnc", nullptr, "Xauth username", "Xauth password", true},
        {"org.example.other", nullptr, nullptr, "password", true},
    };
    for (const auto& row : rows) {
        const Profile profile = Vpn(row.Service, row.ConnectionType);
        NMSettingVpn* vpn = nm_connection_get_setting_vpn(profile.Get());
        EXPECT_EQ(TakesLogin(profile.Get()), row.TakesLogin) << row.Service;
        StoreLogin(profile.Get(), login);
        EXPECT_EQ(StoredUserName(profile.Get()), "ich") << row.Service;
        EXPECT_STREQ(row.User ? nm_setting_vpn_get_data_item(vpn, row.User)
                              : nm_setting_vpn_get_user_name(vpn),
                     "ich");
        EXPECT_STREQ(nm_setting_vpn_get_secret(vpn, row.Password), "geheim") << row.Service;
        StoreLogin(profile.Get(), {"ich", ""});
        EXPECT_EQ(nm_setting_vpn_get_secret(vpn, row.Password), nullptr) << row.Service;
    }
}

} // namespace
