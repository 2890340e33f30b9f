#pragma once

#include <cstddef>
#include <cstdint>
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
    int Dump(nlmsghdr& request, const auto& restart, const auto& take) {
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

  private:
    struct Closer {
        void operator()(mnl_socket* socket) const;
    };
    struct Answer {
        int Error = 0;
        bool Changed = false;
        bool Ended = false;
        const nlmsghdr* Message = nullptr; ///< the next one in the buffer
        int Left = 0;                      ///< bytes of the buffer from there on
    };

    int Open();
    int DumpUntilSteady(nlmsghdr& request, const auto& restart, const auto& take) {
        for (int attempt = 0; attempt < attemptsAtSteadyTable; ++attempt) {
            restart();
            Answer answer = Send(request);
            while (const nlmsghdr* message = Next(answer))
                take(*message);
            if (answer.Error != 0) return answer.Error;
            if (!answer.Changed) return 0;
        }
        // On a host that never rests the last picture has to do.
        return 0;
    }
    Answer Send(nlmsghdr& request);
    // The next message of the answer; nullptr at its end or failure, which `answer` tells of.
    const nlmsghdr* Next(Answer& answer);
    int Receive(Answer& answer);

    static constexpr int attemptsAtSteadyTable = 3;

    std::unique_ptr<mnl_socket, Closer> socket_;
    std::vector<char> buffer_;
    std::uint32_t sequence_ = 0;
};

} // namespace korvalin
