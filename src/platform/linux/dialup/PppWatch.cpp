#include "platform/linux/dialup/PppWatch.h"

#include <linux/rtnetlink.h>

#include <cerrno>
#include <net/if_arp.h>
#include <sys/socket.h>

namespace korvalin {
namespace {

/// How each announcement of a link begins; the rest is cut off.
struct Announcement {
    nlmsghdr Header;
    ifinfomsg Link;
};

} // namespace

PppWatch::PppWatch() : socket_(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE)) {
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK;
    seen_ = !socket_ || bind(socket_.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0;
}

bool PppWatch::HasSeenLink() {
    while (!seen_) {
        Announcement told{};
        const ssize_t count = recv(socket_.Get(), &told, sizeof told, 0);
        if (count < 0 && errno == EAGAIN) break;
        if (count < 0 && errno == EINTR) continue;
        // ENOBUFS: more was said than the socket could hold
        seen_ = count <= 0 || (told.Header.nlmsg_type == RTM_NEWLINK && told.Link.ifi_type == ARPHRD_PPP);
    }
    return seen_;
}

} // namespace korvalin
