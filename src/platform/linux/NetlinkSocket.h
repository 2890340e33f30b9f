#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

struct mnl_socket;
struct nlmsghdr;

namespace korvalin {

/// A route netlink socket (rtnetlink(7)) that stays open from dump to dump.
class NetlinkSocket {
  public:
    NetlinkSocket();
    ~NetlinkSocket();
    NetlinkSocket(const NetlinkSocket&) = delete;
    NetlinkSocket& operator=(const NetlinkSocket&) = delete;

    /// Writes the request's fixed header and attributes behind the message header it is given.
    using FillRequest = std::function<void(nlmsghdr& message)>;
    using Receive = std::function<void(const nlmsghdr& message)>;

    /// Asks for a dump of `type` and hands every message of the answer to `receive`. A dump that the kernel marks as
    /// inconsistent, or that fails half-way, begins again once, after `restart`. 0, or the errno.
    int Dump(std::uint16_t type, const FillRequest& fill, const std::function<void()>& restart, const Receive& receive);

  private:
    struct Closer {
        void operator()(mnl_socket* socket) const;
    };
    int DumpOnce(std::uint16_t type, const FillRequest& fill, const Receive& receive);
    bool Open();

    std::unique_ptr<mnl_socket, Closer> socket_;
    unsigned portId_ = 0;
    std::uint32_t sequence_ = 0;
    std::vector<char> buffer_;
};

} // namespace korvalin
