#include "platform/linux/dialup/DialResults.h"
#include "platform/linux/netlink/InterfaceCounters.h"

using namespace korvalin;

TEST(DialResults, TellARefusedLoginFromALineThatIsSilent) {
    EXPECT_EQ(ResultOfDeviceFailure(NM_DEVICE_STATE_REASON_PPP_FAILED, true, 3), 691);
    EXPECT_EQ(ResultOfDeviceFailure(NM_DEVICE_STATE_REASON_PPP_DISCONNECT, true, 3), 691);
    EXPECT_EQ(ResultOfDeviceFailure(NM_DEVICE_STATE_REASON_PPP_FAILED, false, 3), 678);
    EXPECT_EQ(ResultOfConnectionEnd(NM_ACTIVE_CONNECTION_STATE_REASON_LOGIN_FAILED), 691);
    EXPECT_EQ(ResultOfConnectionEnd(NM_ACTIVE_CONNECTION_STATE_REASON_CONNECT_TIMEOUT), 678);
    // No failure may look like success or like the wish for another login.
    for (int reason = 0; reason <= NM_DEVICE_STATE_REASON_PEER_NOT_FOUND + 1; ++reason) {
        const int result = ResultOfDeviceFailure(static_cast<NMDeviceStateReason>(reason), true, 60);
        EXPECT_TRUE(result >= 600 && result < 800) << reason;
        EXPECT_EQ(result == 691, reason == NM_DEVICE_STATE_REASON_NO_SECRETS) << reason;
    }
    for (const auto& [domain, code, result] :
         {std::tuple{NM_MANAGER_ERROR, int(NM_MANAGER_ERROR_PERMISSION_DENIED), 5},
          std::tuple{NM_SETTINGS_ERROR, int(NM_SETTINGS_ERROR_PERMISSION_DENIED), 5},
          std::tuple{NM_MANAGER_ERROR, int(NM_MANAGER_ERROR_UNKNOWN_DEVICE), 608},
          std::tuple{NM_MANAGER_ERROR, int(NM_MANAGER_ERROR_UNKNOWN_CONNECTION), 611},
          std::tuple{GQuark{0}, 0, 635}}) {
        GError error{domain, code, nullptr};
        EXPECT_EQ(ResultOfRefusal(error), result);
    }
}

TEST(EarlierBytes, AreTakenAwayUnlessTheInterfaceIsAnotherOrCountsAnew) {
    EarlierBytes earlier;
    earlier.Note(4, {5'000'000'000, 70});
    EXPECT_EQ(earlier.Without(4, {5'000'000'300, 80}).Received, 300u);
    EXPECT_EQ(earlier.Without(4, {200, 90}).Received, 200u);
    EXPECT_EQ(earlier.Without(5, {5'000'000'300, 80}).Transmitted, 80u);
}
