#include "platform/linux/LinkWatch.h"

#include <linux/rtnetlink.h>

#include <array>
#include <cerrno>
#include <sys/socket.h>

namespace korvalin {

bool LinkWatch::Open() {
    socket_ = Descriptor(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (socket_ && bind(socket_.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return true;
    socket_ = Descriptor();
    return false;
}

// Only that something was said matters, not what: each announcement is cut off after a few bytes.
bool LinkWatch::Drain() {
    std::array<char, 16> beginning;
    bool changed = false;
    for (;;) {
        // ENOBUFS: more was said than the socket could hold
        if (recv(socket_.Get(), beginning.data(), beginning.size(), 0) > 0 || errno == ENOBUFS) {
            changed = true;
        } else if (errno != EINTR) {
            if (errno == EAGAIN) return changed;
            socket_ = Descriptor();
            return true;
        }
    }
}

bool LinkWatch::Changed() {
    if (socket_) return Drain();
    Open();
    return true;
}

} // namespace korvalin
