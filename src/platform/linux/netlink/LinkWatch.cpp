#include "platform/linux/netlink/LinkWatch.h"

#include "platform/linux/netlink/LinkMessage.h"

#include <libmnl/libmnl.h>
#include <linux/rtnetlink.h>

#include <cerrno>
#include <sys/socket.h>
#include <utility>

namespace korvalin {
namespace {

// An announcement of a link has one to three KB, more with many alternative names.
constexpr std::size_t bufferBytes = 16384;
// Containers that go together announce a lot at once. The kernel gives as much as it allows everybody.
constexpr int queueBytes = 4 << 20;

} // namespace

bool LinkWatch::Open() {
    buffer_.resize(bufferBytes);
    socket_ = Descriptor(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    setsockopt(socket_.Get(), SOL_SOCKET, SO_RCVBUF, &queueBytes, sizeof queueBytes);
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (socket_ && bind(socket_.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return true;
    socket_ = Descriptor();
    return false;
}

// What is said of a link that stays does not matter, only that something is said.
void LinkWatch::Take(std::size_t bytes) {
    const auto* message = reinterpret_cast<const nlmsghdr*>(buffer_.data());
    InterfaceRow row;
    // Each announcement comes alone.
    if (mnl_nlmsg_ok(message, static_cast<int>(bytes)) && ReadRemovedLink(*message, row))
        removed_.push_back(std::move(row));
}

bool LinkWatch::Drain() {
    bool changed = false;
    for (;;) {
        const ssize_t count = recv(socket_.Get(), buffer_.data(), buffer_.size(), 0);
        // ENOBUFS: more was said than the socket could hold
        if (count > 0 || errno == ENOBUFS) {
            changed = true;
            if (count > 0) Take(static_cast<std::size_t>(count));
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

std::vector<InterfaceRow> LinkWatch::TakeRemoved() {
    return std::exchange(removed_, {});
}

} // namespace korvalin
