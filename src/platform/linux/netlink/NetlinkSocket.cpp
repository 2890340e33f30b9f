#include "platform/linux/netlink/NetlinkSocket.h"

#include <libmnl/libmnl.h>
#include <linux/netlink.h>

#include <cerrno>
#include <sys/socket.h>
#include <sys/time.h>

namespace korvalin {
namespace {

// The kernel fills at most 32 KB per message of a dump, and only when it has seen a buffer of that size.
constexpr std::size_t bufferBytes = 65536;
constexpr int attemptsAtSteadyTable = 3;
constexpr timeval answerTimeout = {2, 0};

int ErrorOf(const nlmsghdr& message) {
    const auto* error = static_cast<const nlmsgerr*>(mnl_nlmsg_get_payload(&message));
    return message.nlmsg_len < mnl_nlmsg_size(sizeof(nlmsgerr)) ? EBADMSG : -error->error;
}

// The end of a dump carries the error that broke it off.
int ErrorOfEnd(const nlmsghdr& message) {
    if (message.nlmsg_len < mnl_nlmsg_size(sizeof(int))) return 0;
    return -*static_cast<const int*>(mnl_nlmsg_get_payload(&message));
}

} // namespace

NetlinkSocket::NetlinkSocket() = default;
NetlinkSocket::~NetlinkSocket() = default;

void NetlinkSocket::Closer::operator()(mnl_socket* socket) const {
    mnl_socket_close(socket);
}

int NetlinkSocket::Open() {
    socket_.reset(mnl_socket_open2(NETLINK_ROUTE, SOCK_CLOEXEC));
    if (!socket_) return errno;
    buffer_.resize(bufferBytes);
    const int descriptor = mnl_socket_get_fd(socket_.get());
    // A lost answer must not hold the program up for ever.
    if (mnl_socket_bind(socket_.get(), 0, MNL_SOCKET_AUTOPID) == 0 &&
        setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &answerTimeout, sizeof answerTimeout) == 0) {
        return 0;
    }
    const int error = errno;
    socket_.reset();
    return error;
}

int NetlinkSocket::Dump(nlmsghdr& request, const std::function<void()>& restart,
                        const std::function<void(const nlmsghdr&)>& take) {
    int error = 0;
    for (int attempt = 0; attempt < 2; ++attempt) {
        error = socket_ ? 0 : Open();
        if (error == 0) error = DumpUntilSteady(request, restart, take);
        if (error == 0) return 0;
        // What is left of the answer would be taken for the next one's.
        socket_.reset();
    }
    return error;
}

int NetlinkSocket::DumpUntilSteady(nlmsghdr& request, const std::function<void()>& restart,
                                   const std::function<void(const nlmsghdr&)>& take) {
    for (int attempt = 0; attempt < attemptsAtSteadyTable; ++attempt) {
        restart();
        const Answer answer = DumpOnce(request, take);
        if (answer.Error != 0) return answer.Error;
        if (!answer.Changed) return 0;
    }
    // On a host that never rests the last picture has to do.
    return 0;
}

NetlinkSocket::Answer NetlinkSocket::DumpOnce(nlmsghdr& request,
                                              const std::function<void(const nlmsghdr&)>& take) {
    Answer answer;
    request.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.nlmsg_seq = ++sequence_;
    if (mnl_socket_sendto(socket_.get(), &request, request.nlmsg_len) < 0) return {errno, false};
    for (;;) {
        const ssize_t count = mnl_socket_recvfrom(socket_.get(), buffer_.data(), buffer_.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return {errno, false};
        if (count == 0) return {ECONNRESET, false};
        int left = static_cast<int>(count);
        const auto* message = reinterpret_cast<const nlmsghdr*>(buffer_.data());
        for (; mnl_nlmsg_ok(message, left); message = mnl_nlmsg_next(message, &left)) {
            if (message->nlmsg_seq != sequence_) continue;
            if ((message->nlmsg_flags & NLM_F_DUMP_INTR) != 0) answer.Changed = true;
            if (message->nlmsg_type == NLMSG_ERROR) return {ErrorOf(*message), false};
            if (message->nlmsg_type == NLMSG_DONE) return {ErrorOfEnd(*message), answer.Changed};
            if (message->nlmsg_type >= NLMSG_MIN_TYPE) take(*message);
        }
    }
}

} // namespace korvalin
