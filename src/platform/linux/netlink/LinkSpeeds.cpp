#include "platform/linux/netlink/LinkSpeeds.h"

#include <linux/ethtool.h>
#include <linux/sockios.h>

#include <array>
#include <cstring>
#include <limits>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace korvalin {
namespace {

// The settings and behind them three sets of link modes, which the kernel fills in unasked.
struct Settings {
    static constexpr std::size_t Sets = 3;
    static constexpr std::size_t LongestSet = std::numeric_limits<std::int8_t>::max();

    ethtool_link_settings& Head() { return *reinterpret_cast<ethtool_link_settings*>(bytes.data()); }

    alignas(ethtool_link_settings)
        std::array<char, sizeof(ethtool_link_settings) + Sets * LongestSet * sizeof(std::uint32_t)> bytes{};
};

bool Ask(int socket, const std::string& name, std::int8_t maskWords, Settings& settings) {
    settings = {};
    settings.Head().cmd = ETHTOOL_GLINKSETTINGS;
    settings.Head().link_mode_masks_nwords = maskWords;
    ifreq request{};
    std::memcpy(request.ifr_name, name.data(), name.size());
    request.ifr_data = settings.bytes.data();
    return ioctl(socket, SIOCETHTOOL, &request) == 0;
}

} // namespace

std::uint64_t LinkSpeeds::BitsPerSecond(const std::string& name) {
    constexpr std::uint64_t megabit = 1'000'000;
    if (!socket_) socket_ = Descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    Settings settings;
    if (name.size() >= IFNAMSIZ || !Ask(socket_.Get(), name, maskWords_, settings)) return 0;
    // To a wrong length the kernel answers with nothing but the right one, negative.
    if (const std::int8_t told = settings.Head().link_mode_masks_nwords; told < 0) {
        maskWords_ = static_cast<std::int8_t>(-told);
        if (!Ask(socket_.Get(), name, maskWords_, settings)) return 0;
    }
    const std::uint32_t speed = settings.Head().speed;
    return speed == static_cast<std::uint32_t>(SPEED_UNKNOWN) ? 0 : speed * megabit;
}

} // namespace korvalin
