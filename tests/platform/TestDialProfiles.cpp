#include "platform/DialDialog.h"
#include "platform/linux/dialup/DialProfiles.h"
#include "platform/linux/dialup/GObjectPointer.h"
#include "platform/linux/dialup/ProfileLogin.h"
#include "platform/linux/dialup/ProfileNames.h"

#include <NetworkManager.h>

using namespace korvalin;

namespace {

TEST(DialProfiles, GivesEachProfileANameOfItsOwn) {
    using Names = std::vector<std::string>;
    // The lowest identifier keeps a name, and blanks make no difference.
    EXPECT_EQ(UniqueNames({{"A", "2"}, {"A", "1"}, {" A ", "3"}, {"  ", "4"}}),
              (Names{"A (2)", "A", "A (3)", "4"}));
    EXPECT_EQ(UniqueNames({{"A", "1"}, {"A", "2"}, {"A (2)", "3"}, {"A (2)", "4"}}),
              (Names{"A", "A (3)", "A (2)", "A (2) (2)"}))
        << "a counted name that is twice itself";
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

Profile Vpn(const char* service, const char* connectionType) {
    Profile profile("vpn");
    NMSetting* setting = profile.With(nm_setting_vpn_new(), "service-type", service);
    if (connectionType != nullptr)
        nm_setting_vpn_add_data_item(NM_SETTING_VPN(setting), "connection-type", connectionType);
    return profile;
}

TEST(DialProfiles, TellsDeviceTypeAndNumber) {
    Profile cdma("cdma"), dun("bluetooth"), wireguard("wireguard"), adslOverAtm("adsl"), adsl("adsl");
    cdma.With(nm_setting_cdma_new(), "number", "#777");
    dun.With(nm_setting_bluetooth_new(), "type", "dun");
    dun.With(nm_setting_gsm_new(), "apn", "net");
    adslOverAtm.With(nm_setting_adsl_new(), "protocol", "pppoa");
    adsl.With(nm_setting_adsl_new(), "protocol", "pppoe");
    Profile gsm("gsm"), numberOnly("gsm");
    gsm.With(nm_setting_gsm_new(), "number", "*99#", "apn", "internet");
    numberOnly.With(nm_setting_gsm_new(), "number", "*99#");
    using Row = std::tuple<const Profile&, const char*, const char*>;
    const Row rows[] = {{gsm, "modem", "*99# (internet)"},
                        {numberOnly, "modem", "*99#"},
                        {cdma, "modem", "#777"},
                        {dun, "modem", "net"},
                        {adsl, "PPPoE", ""},
                        {adslOverAtm, "ATM", ""},
                        {wireguard, "vpn", ""}};
    for (const auto& [profile, deviceType, number] : rows) {
        const PhoneEntry entry = DescribeProfile(profile.Get());
        EXPECT_EQ(entry.DeviceType, deviceType);
        EXPECT_EQ(entry.LocalPhoneNumber, number);
        EXPECT_EQ(entry.AreaCode, "");
        EXPECT_TRUE(IsDialUp(profile.Get())) << deviceType;
    }
    Profile network("bluetooth");
    network.With(nm_setting_bluetooth_new(), "type", "panu");
    EXPECT_FALSE(IsDialUp(network.Get()));
}

TEST(ProfileLogin, IsKeptWhereTheServiceLooksForIt) {
    const Login login{"ich", "geheim"};
    EXPECT_FALSE(TakesLogin(Profile("wireguard").Get()));
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
