#include "platform/linux/netlink/AddressAge.h"

#include <libmnl/libmnl.h>
#include <linux/if_addr.h>
#include <linux/rtnetlink.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace korvalin {
namespace {

constexpr double ticksPerSecond = 100;
constexpr double tickRange = 4294967296.0; // the kernel's number wraps after 497 days

int TakeBirth(const nlattr* attribute, void* context) {
    auto& birth = *static_cast<std::optional<std::uint32_t>*>(context);
    ifa_cacheinfo info{};
    if (mnl_attr_get_type(attribute) == IFA_CACHEINFO && mnl_attr_get_payload_len(attribute) >= sizeof info) {
        std::memcpy(&info, mnl_attr_get_payload(attribute), sizeof info);
        birth = info.cstamp;
    }
    return MNL_CB_OK;
}

} // namespace

std::optional<std::uint32_t> ReadAddressBirth(const nlmsghdr& message, std::uint32_t link) {
    if (message.nlmsg_type != RTM_NEWADDR || message.nlmsg_len < mnl_nlmsg_size(sizeof(ifaddrmsg)))
        return std::nullopt;
    const auto* header = static_cast<const ifaddrmsg*>(mnl_nlmsg_get_payload(&message));
    if (header->ifa_index != link || header->ifa_scope >= RT_SCOPE_LINK) return std::nullopt;
    std::optional<std::uint32_t> birth;
    mnl_attr_parse(&message, sizeof(ifaddrmsg), TakeBirth, &birth);
    return birth;
}

std::optional<double> OldestAddressAge(NetlinkSocket& socket, std::uint32_t link, double awakeSeconds) {
    alignas(nlmsghdr) std::array<char, 64> bytes{};
    nlmsghdr* request = mnl_nlmsg_put_header(bytes.data());
    request->nlmsg_type = RTM_GETADDR;
    mnl_nlmsg_put_extra_header(request, sizeof(ifaddrmsg));
    std::optional<double> oldest;
    const int error = socket.Dump(
        *request, [&] { oldest.reset(); },
        [&](const nlmsghdr& message) {
            const auto birth = ReadAddressBirth(message, link);
            if (!birth) return;
            const double age = std::fmod(awakeSeconds * ticksPerSecond - *birth + tickRange, tickRange);
            oldest = std::max(oldest.value_or(0), age / ticksPerSecond);
        });
    return error == 0 ? oldest : std::nullopt;
}

} // namespace korvalin
