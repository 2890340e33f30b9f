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

NetlinkSocket::Answer NetlinkSocket::Send(nlmsghdr& request) {
    Answer answer;
    request.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.nlmsg_seq = ++sequence_;
    if (mnl_socket_sendto(socket_.get(), &request, request.nlmsg_len) < 0) answer.Error = errno;
    answer.Ended = answer.Error != 0;
    return answer;
}

int NetlinkSocket::Receive(Answer& answer) {
    ssize_t count = 0;
    do {
        count = mnl_socket_recvfrom(socket_.get(), buffer_.data(), buffer_.size());
    } while (count < 0 && errno == EINTR);
    if (count <= 0) return count < 0 ? errno : ECONNRESET;
    answer.Message = reinterpret_cast<const nlmsghdr*>(buffer_.data());
    answer.Left = static_cast<int>(count);
    return 0;
}

const nlmsghdr* NetlinkSocket::Next(Answer& answer) {
    while (!answer.Ended) {
        if (!mnl_nlmsg_ok(answer.Message, answer.Left)) {
            answer.Error = Receive(answer);
            answer.Ended = answer.Error != 0;
            continue;
        }
        const nlmsghdr& message = *answer.Message;
        answer.Message = mnl_nlmsg_next(&message, &answer.Left);
        if (message.nlmsg_seq != sequence_) continue;
        if ((message.nlmsg_flags & NLM_F_DUMP_INTR) != 0) answer.Changed = true;
        answer.Ended = message.nlmsg_type == NLMSG_ERROR || message.nlmsg_type == NLMSG_DONE;
        if (message.nlmsg_type == NLMSG_ERROR) answer.Error = ErrorOf(message);
        if (message.nlmsg_type == NLMSG_DONE) answer.Error = ErrorOfEnd(message);
        if (message.nlmsg_type >= NLMSG_MIN_TYPE) return &message;
    }
    return nullptr;
}

} // namespace korvalin
