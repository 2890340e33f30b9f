#include "platform/linux/netlink/NetlinkNetworkTables.h"

#include "platform/linux/netlink/AddressMessage.h"
#include "platform/linux/netlink/QueueMessage.h"
#include "platform/linux/netlink/RowFinder.h"

#include <libmnl/libmnl.h>
#include <linux/if_addr.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <sys/socket.h>
#include <tuple>
#include <utility>

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

// The system's uptime as MIBs count it (TimeTicks): hundredths of a second, modulo 2^32.
std::uint32_t UptimeHundredths() {
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return static_cast<std::uint32_t>(time.tv_sec * 100 + time.tv_nsec / 10'000'000);
}

template <typename Row>
bool AddressBefore(const Row& left, const Row& right) {
    return std::tie(left.Address, left.Index) < std::tie(right.Address, right.Index);
}

// Old kernels dump in the order of name hashes.
template <typename Row>
void SortByIndex(std::vector<Row>& rows) {
    if (!std::is_sorted(rows.begin(), rows.end(), IndexBefore))
        std::sort(rows.begin(), rows.end(), IndexBefore);
}

} // namespace

NetlinkNetworkTables::NetlinkNetworkTables(const std::filesystem::path& procNet,
                                           std::filesystem::path netFolder)
    : hardware_(std::move(netFolder)), tcp_(procNet) {}

void NetlinkNetworkTables::BeginLook() {
    hardware_.BeginLook();
    history_.BeginLook(UptimeHundredths());
}

void NetlinkNetworkTables::NoteLink(const InterfaceRow& row, const LinkDetails& details) {
    history_.Note(row.Index, row.OperStatus, details.CarrierChanges);
    hardware_.Note(row, details);
}

// Everything about every link. No extension mask: the kernel then leaves out the virtual functions of server
// cards.
int NetlinkNetworkTables::ReadLinks() {
    Request request(RTM_GETLINK, ifinfomsg{});
    std::size_t count = 0;
    LinkDetails details;
    const auto restart = [&] {
        count = 0;
        BeginLook();
    };
    std::swap(links_, previous_); // old rows are written over, as their texts have memory already
    const int error = socket_.Dump(request.Header(), restart, [&](const nlmsghdr& message) {
        if (count == links_.size()) links_.emplace_back();
        InterfaceRow& row = links_[count];
        if (!ReadLinkMessage(message, row, details)) return;
        NoteLink(row, details);
        ++count;
    });
    links_.resize(error == 0 ? count : 0);
    if (error != 0) return error;
    history_.EndLook();
    SortByIndex(links_);
    hardware_.Complete(links_);
    ReadAddresses(links_);
    return 0;
}

// An adapter without a known address is as good as one without any.
template <typename Row>
void NetlinkNetworkTables::ReadAddresses(std::vector<Row>& rows) {
    Request request(RTM_GETADDR, ifaddrmsg{});
    RowFinder finder(rows);
    const auto restart = [&rows] {
        for (Row& row : rows)
            row.Address.clear();
    };
    static_cast<void>(socket_.Dump(request.Header(), restart, [&](const nlmsghdr& message) {
        const auto address = ReadAddressMessage(message);
        Row* row = address ? finder.Find(address->Link) : nullptr;
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

void NetlinkNetworkTables::Listen() {
    if (watch_.Changed()) changed_ = true;
    for (InterfaceRow& removed : watch_.TakeRemoved())
        NoteRemoved(std::move(removed));
}

// A link leaves its bond before it goes, its folder goes with it, and one half of a pair forgets what it has
// received from the other: such things are known from before.
void NetlinkNetworkTables::NoteRemoved(InterfaceRow removed) {
    InterfaceRow* shown = RowFinder(links_).Find(removed.Index);
    const InterfaceRow* known = shown != nullptr ? shown : RowFinder(previous_).Find(removed.Index);
    if (known != nullptr) {
        removed.InOctets = std::max(removed.InOctets, known->InOctets);
        removed.OutOctets = std::max(removed.OutOctets, known->OutOctets);
        removed.Address = known->Address;
        removed.HasHardware = known->HasHardware;
        removed.IsPort = known->IsPort;
    }
    if (shown != nullptr) links_.erase(links_.begin() + (shown - links_.data()));
    removed_.push_back(std::move(removed));
}

std::optional<std::vector<InterfaceRow>> NetlinkNetworkTables::GetIfTable() {
    Listen();
    const bool known = !std::exchange(changed_, false) && !links_.empty();
    int error = 0;
    if (!known || !countersAlone_ || !ReadCounters()) {
        error = ReadLinks();
        // The kernel has announced by now that those have gone which it no longer shows.
        Listen();
    }
    if (error != 0) return std::nullopt;
    return links_;
}

std::vector<InterfaceRow> NetlinkNetworkTables::TakeRemoved() {
    return std::exchange(removed_, {});
}

int NetlinkNetworkTables::ReadEntries(std::vector<InterfaceEntry>& entries) {
    Request request(RTM_GETLINK, ifinfomsg{});
    InterfaceEntry entry;
    LinkDetails details;
    const auto restart = [&] {
        entries.clear();
        BeginLook();
    };
    const int error = socket_.Dump(request.Header(), restart, [&](const nlmsghdr& message) {
        if (!ReadLinkEntry(message, entry, details)) return;
        NoteLink(entry, details);
        entries.push_back(entry);
    });
    if (error == 0) history_.EndLook();
    return error;
}

// A kernel without queues has nothing that waits.
void NetlinkNetworkTables::ReadQueues(std::vector<InterfaceEntry>& entries) {
    Request request(RTM_GETQDISC, tcmsg{});
    RowFinder finder(entries);
    static_cast<void>(socket_.Dump(
        request.Header(), [] {},
        [&](const nlmsghdr& message) {
            const auto queue = ReadQueueMessage(message);
            InterfaceEntry* entry = queue ? finder.Find(queue->Link) : nullptr;
            if (entry != nullptr) entry->OutQLen = queue->Packets;
        }));
}

std::optional<std::vector<InterfaceEntry>> NetlinkNetworkTables::GetIfTable2() {
    std::vector<InterfaceEntry> entries;
    if (ReadEntries(entries) != 0) return std::nullopt;
    SortByIndex(entries);
    hardware_.Complete(entries);
    ReadAddresses(entries);
    ReadQueues(entries);
    for (InterfaceEntry& entry : entries) {
        entry.LastChange = history_.LastChange(entry.Index);
        entry.Speed = speeds_.BitsPerSecond(entry.Description);
    }
    return entries;
}

// The addresses of one version in the order of their octets.
template <typename Row>
std::optional<std::vector<Row>> NetlinkNetworkTables::ReadAddressTable(std::uint8_t family) {
    std::vector<Row> rows;
    ifaddrmsg wanted{};
    wanted.ifa_family = family;
    Request request(RTM_GETADDR, wanted);
    const int error = socket_.Dump(
        request.Header(), [&rows] { rows.clear(); },
        [&rows](const nlmsghdr& message) {
            Row row;
            if (ReadAddressRow(message, row)) rows.push_back(std::move(row));
        });
    if (error != 0) return std::nullopt;
    std::sort(rows.begin(), rows.end(), AddressBefore<Row>);
    return rows;
}

std::optional<std::vector<IpAddressRow>> NetlinkNetworkTables::GetIpAddrTable() {
    return ReadAddressTable<IpAddressRow>(AF_INET);
}

std::optional<std::vector<UnicastIpAddressRow>> NetlinkNetworkTables::GetUnicastIpAddressTable() {
    return ReadAddressTable<UnicastIpAddressRow>(AF_INET6);
}

TcpStatistics NetlinkNetworkTables::GetTcpStatistics() {
    return tcp_.Read();
}

} // namespace korvalin
