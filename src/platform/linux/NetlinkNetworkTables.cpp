#include "platform/linux/NetlinkNetworkTables.h"

#include "platform/linux/AddressMessage.h"
#include "platform/linux/LinkMessage.h"

#include <libmnl/libmnl.h>
#include <linux/if_addr.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include <algorithm>
#include <array>
#include <sys/socket.h>

namespace korvalin {
namespace {

/// A request of a few bytes: its header and one record.
class Request {
  public:
    template <typename Record>
    Request(std::uint16_t type, const Record& record) {
        Header().nlmsg_type = type;
        *static_cast<Record*>(mnl_nlmsg_put_extra_header(&Header(), sizeof(Record))) = record;
    }
    nlmsghdr& Header() { return *header_; }

  private:
    alignas(nlmsghdr) std::array<char, 64> bytes_{};
    nlmsghdr* header_ = mnl_nlmsg_put_header(bytes_.data());
};

bool IndexBefore(const InterfaceRow& left, const InterfaceRow& right) {
    return left.Index < right.Index;
}

// Finds the rows of indexes that mostly come in the rows' own order.
class RowFinder {
  public:
    explicit RowFinder(std::vector<InterfaceRow>& rows) : rows_(rows) {}

    InterfaceRow* Find(std::uint32_t index) {
        if (next_ >= rows_.size() || rows_[next_].Index != index) {
            const auto found =
                std::lower_bound(rows_.begin(), rows_.end(), index,
                                 [](const InterfaceRow& row, std::uint32_t i) { return row.Index < i; });
            next_ = static_cast<std::size_t>(found - rows_.begin());
        }
        return next_ < rows_.size() && rows_[next_].Index == index ? &rows_[next_++] : nullptr;
    }

  private:
    std::vector<InterfaceRow>& rows_;
    std::size_t next_ = 0;
};

} // namespace

NetlinkNetworkTables::NetlinkNetworkTables(const std::filesystem::path& procNet) : tcp_(procNet) {}

// Everything about every link. No extension mask: the kernel then leaves out the virtual functions of server
// cards.
int NetlinkNetworkTables::ReadLinks() {
    Request request(RTM_GETLINK, ifinfomsg{});
    std::size_t count = 0; // rows of the last time are written over, as their texts have memory already
    const int error = socket_.Dump(
        request.Header(), [&count] { count = 0; },
        [&](const nlmsghdr& message) {
            if (count == links_.size()) links_.emplace_back();
            if (ReadLinkMessage(message, links_[count])) ++count;
        });
    links_.resize(error == 0 ? count : 0);
    if (!std::is_sorted(links_.begin(), links_.end(), IndexBefore)) {
        std::sort(links_.begin(), links_.end(), IndexBefore); // old kernels dump in the order of name hashes
    }
    if (error == 0) ReadAddresses();
    return error;
}

// An adapter without a known address is as good as one without any.
void NetlinkNetworkTables::ReadAddresses() {
    Request request(RTM_GETADDR, ifaddrmsg{});
    RowFinder finder(links_);
    const auto restart = [this] {
        for (InterfaceRow& row : links_)
            row.Address.clear();
    };
    static_cast<void>(socket_.Dump(request.Header(), restart, [&](const nlmsghdr& message) {
        const auto address = ReadAddressMessage(message);
        InterfaceRow* row = address ? finder.Find(address->Link) : nullptr;
        // Version 4 is told first, and the first one counts.
        if (row != nullptr && row->Address.empty()) row->Address = address->Text;
    }));
}

// The counters of the links that are known. False when it cannot be done or links and counters do not match.
bool NetlinkNetworkTables::ReadCounters() {
    if_stats_msg wanted{};
    wanted.filter_mask = IFLA_STATS_FILTER_BIT(IFLA_STATS_LINK_64);
    Request request(RTM_GETSTATS, wanted);
    std::size_t found = 0;
    RowFinder finder(links_);
    const int error = socket_.Dump(
        request.Header(), [&found] { found = 0; },
        [&](const nlmsghdr& message) {
            InterfaceRow* row = finder.Find(LinkOfCounters(message));
            if (row != nullptr && ReadCountersMessage(message, *row)) ++found;
        });
    countersAlone_ = error == 0;
    return error == 0 && found == links_.size();
}

int NetlinkNetworkTables::GetIfTable(std::vector<InterfaceRow>& rows, bool) {
    const bool known = !watch_.Changed() && !links_.empty();
    const int error = known && countersAlone_ && ReadCounters() ? 0 : ReadLinks();
    rows = links_;
    return error;
}

int NetlinkNetworkTables::GetTcpStatistics(TcpStatistics& statistics) {
    return tcp_.Read(statistics);
}

} // namespace korvalin
