#include "fakes/TemporaryFolder.h"
#include "platform/linux/dialup/DialResults.h"
#include "platform/linux/netlink/AddressAge.h"
#include "platform/linux/netlink/InterfaceCounters.h"

#include <libmnl/libmnl.h>
#include <linux/if_addr.h>
#include <linux/rtnetlink.h>

#include <array>

using namespace korvalin;

namespace {

TEST(DialResults, TellARefusedLoginFromALineThatIsSilent) {
    EXPECT_EQ(ResultOfDeviceFailure(NM_DEVICE_STATE_REASON_NO_SECRETS, false, 50), 691);
    EXPECT_EQ(ResultOfDeviceFailure(NM_DEVICE_STATE_REASON_PPP_FAILED, true, 3), 691);
    EXPECT_EQ(ResultOfDeviceFailure(NM_DEVICE_STATE_REASON_PPP_DISCONNECT, true, 3), 691);
    EXPECT_EQ(ResultOfDeviceFailure(NM_DEVICE_STATE_REASON_PPP_FAILED, true, 35), 678);
    EXPECT_EQ(ResultOfDeviceFailure(NM_DEVICE_STATE_REASON_PPP_FAILED, false, 3), 678);
    EXPECT_EQ(ResultOfDeviceFailure(NM_DEVICE_STATE_REASON_MODEM_NO_DIAL_TONE, false, 3), 680);
    EXPECT_EQ(ResultOfDeviceFailure(NM_DEVICE_STATE_REASON_MODEM_NO_CARRIER, false, 3), 678);
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

void WriteInterface(const TemporaryFolder& net, const std::string& name, int index, long received,
                    long sent) {
    std::filesystem::create_directories(net.Path() / name / "statistics");
    net.Write(name + "/ifindex", std::to_string(index) + "\n");
    net.Write(name + "/statistics/rx_bytes", std::to_string(received) + "\n");
    net.Write(name + "/statistics/tx_bytes", std::to_string(sent) + "\n");
}

TEST(InterfaceCounters, CountOnlyWhatTheConnectionItselfMoved) {
    const TemporaryFolder net;
    WriteInterface(net, "wwan0", 4, 5'000'000'000, 70);
    EarlierBytes earlier;
    earlier.NoteAll(net.Path());
    const InterfaceCounters counters(net.Path() / "wwan0");
    EXPECT_EQ(counters.Index(), 4u);
    EXPECT_EQ(counters.Read()->Received, 5'000'000'000u);
    WriteInterface(net, "wwan0", 4, 5'000'000'300, 80);
    const auto own = earlier.Without(4, *counters.Read());
    EXPECT_EQ(own.Received, 300u);
    EXPECT_EQ(own.Transmitted, 10u);
    // Counted anew, another link, a line that was up before anybody looked: nothing is taken away.
    EXPECT_EQ(earlier.Without(4, {200, 90}).Received, 200u);
    EXPECT_EQ(earlier.Without(5, {5'000'000'300, 80}).Received, 5'000'000'300u);
    earlier.Forget(4);
    EXPECT_EQ(earlier.Without(4, *counters.Read()).Transmitted, 80u);
    EXPECT_FALSE(InterfaceCounters(net.Path() / "none").Read());
    EXPECT_EQ(InterfaceCounters(net.Path() / "none").Index(), 0u);
    EXPECT_FALSE(InterfaceCounters().Read());
}

// The kernel's message about an address that a link got so many hundredths of a second after the start.
class AddressNews {
  public:
    AddressNews(std::uint32_t link, unsigned char scope, std::uint32_t created,
                std::uint16_t type = RTM_NEWADDR) {
        nlmsghdr* header = mnl_nlmsg_put_header(bytes_.data());
        header->nlmsg_type = type;
        auto* address = static_cast<ifaddrmsg*>(mnl_nlmsg_put_extra_header(header, sizeof(ifaddrmsg)));
        address->ifa_index = link;
        address->ifa_scope = scope;
        const ifa_cacheinfo info{0, 0, created, created + 5};
        mnl_attr_put(header, IFA_CACHEINFO, sizeof info, &info);
    }
    const nlmsghdr& Get() const { return *reinterpret_cast<const nlmsghdr*>(bytes_.data()); }

  private:
    alignas(nlmsghdr) std::array<char, 256> bytes_{};
};

TEST(AddressAge, IsReadFromAddressesThatReachBeyondTheLink) {
    EXPECT_EQ(ReadAddressBirth(AddressNews(3, RT_SCOPE_UNIVERSE, 12345).Get(), 3), 12345u);
    EXPECT_FALSE(ReadAddressBirth(AddressNews(4, RT_SCOPE_UNIVERSE, 12345).Get(), 3));
    EXPECT_FALSE(ReadAddressBirth(AddressNews(3, RT_SCOPE_LINK, 12345).Get(), 3));
    EXPECT_FALSE(ReadAddressBirth(AddressNews(3, RT_SCOPE_UNIVERSE, 12345, RTM_DELADDR).Get(), 3));
    NetlinkSocket socket;
    EXPECT_FALSE(OldestAddressAge(socket, 0, 1)); // no link has this number
}

} // namespace
