#include "platform/linux/NetlinkSocket.h"

#include <cerrno>
#include <ctime>

#include <libmnl/libmnl.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace korvalin {
namespace {

// The kernel fills as much as fits into each answer; fewer, larger ones cost less with a thousand adapters.
constexpr std::size_t bufferBytes = 128 * 1024;
constexpr int answerSeconds = 2; // a kernel that does not answer must not stop the window

} // namespace

void NetlinkSocket::Closer::operator()(mnl_socket* socket) const { mnl_socket_close(socket); }

NetlinkSocket::NetlinkSocket() : sequence_(static_cast<std::uint32_t>(time(nullptr))), buffer_(bufferBytes) {}
NetlinkSocket::~NetlinkSocket() = default;

bool NetlinkSocket::Open() {
    if (socket_ != nullptr) return true;
    socket_.reset(mnl_socket_open2(NETLINK_ROUTE, SOCK_CLOEXEC));
    if (socket_ == nullptr) return false;
    const timeval limit{answerSeconds, 0};
    setsockopt(mnl_socket_get_fd(socket_.get()), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    if (mnl_socket_bind(socket_.get(), 0, MNL_SOCKET_AUTOPID) < 0) {
        socket_.reset();
        return false;
    }
    portId_ = mnl_socket_get_portid(socket_.get());
    return true;
}

int NetlinkSocket::Dump(std::uint16_t type, const FillRequest& fill, const std::function<void()>& restart,
                        const Receive& receive) {
    restart();
    int error = DumpOnce(type, fill, receive);
    if (error == 0) return 0;
    if (error != EINTR) socket_.reset(); // what is left of the answer must not be read as the next one's
    restart();
    error = DumpOnce(type, fill, receive);
    // Twice inconsistent is a table that changes all the time: what was read is as good as it gets.
    if (error == EINTR) return 0;
    if (error != 0) socket_.reset();
    return error;
}

int NetlinkSocket::DumpOnce(std::uint16_t type, const FillRequest& fill, const Receive& receive) {
    if (!Open()) return errno;
    nlmsghdr* request = mnl_nlmsg_put_header(buffer_.data());
    request->nlmsg_type = type;
    request->nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request->nlmsg_seq = ++sequence_;
    fill(*request);
    if (mnl_socket_sendto(socket_.get(), request, request->nlmsg_len) < 0) return errno;

    bool interrupted = false;
    for (;;) {
        const ssize_t received = mnl_socket_recvfrom(socket_.get(), buffer_.data(), buffer_.size());
        if (received < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        int rest = static_cast<int>(received);
        const auto* message = reinterpret_cast<const nlmsghdr*>(buffer_.data());
        for (; mnl_nlmsg_ok(message, rest); message = mnl_nlmsg_next(message, &rest)) {
            if (message->nlmsg_seq != sequence_) continue; // the end of an answer given up earlier
            if ((message->nlmsg_flags & NLM_F_DUMP_INTR) != 0) interrupted = true;
            if (message->nlmsg_type == NLMSG_DONE) return interrupted ? EINTR : 0;
            if (message->nlmsg_type == NLMSG_ERROR) {
                return -static_cast<const nlmsgerr*>(mnl_nlmsg_get_payload(message))->error;
            }
            receive(*message);
        }
    }
}

} // namespace korvalin
