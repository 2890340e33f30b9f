#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

struct mnl_socket;
struct nlmsghdr;

namespace korvalin {

/// A routing socket to the kernel that stays open between requests.
class NetlinkSocket {
  public:
    NetlinkSocket();
    ~NetlinkSocket();
    NetlinkSocket(const NetlinkSocket&) = delete;
    NetlinkSocket& operator=(const NetlinkSocket&) = delete;

    /// Sends a dump request (its flags and sequence number are filled in) and hands each message of the
    /// answer to `take`; `restart` is called before each attempt, as a table that changed meanwhile is asked
    /// for again. A socket that has failed is opened anew once. 0 or the system's error number.
    int Dump(nlmsghdr& request, const std::function<void()>& restart,
             const std::function<void(const nlmsghdr&)>& take);

  private:
    struct Closer {
        void operator()(mnl_socket* socket) const;
    };
    struct Answer {
        int Error = 0;
        bool Changed = false;
    };

    int Open();
    int DumpUntilSteady(nlmsghdr& request, const std::function<void()>& restart,
                        const std::function<void(const nlmsghdr&)>& take);
    Answer DumpOnce(nlmsghdr& request, const std::function<void(const nlmsghdr&)>& take);

    std::unique_ptr<mnl_socket, Closer> socket_;
    std::vector<char> buffer_;
    std::uint32_t sequence_ = 0;
};

} // namespace korvalin
