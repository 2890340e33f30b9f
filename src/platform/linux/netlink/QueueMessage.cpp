#include "platform/linux/netlink/QueueMessage.h"

#include <libmnl/libmnl.h>
#include <linux/gen_stats.h>
#include <linux/pkt_sched.h>
#include <linux/rtnetlink.h>

#include <cstring>

namespace korvalin {
namespace {

int TakeQueue(const nlattr* attribute, void* context) {
    gnet_stats_queue queue{};
    if (mnl_attr_get_type(attribute) != TCA_STATS_QUEUE || mnl_attr_get_payload_len(attribute) < sizeof queue)
        return MNL_CB_OK;
    std::memcpy(&queue, mnl_attr_get_payload(attribute), sizeof queue);
    *static_cast<std::uint32_t*>(context) = queue.qlen;
    return MNL_CB_STOP;
}

int TakeStatistics(const nlattr* attribute, void* context) {
    if (mnl_attr_get_type(attribute) != TCA_STATS2) return MNL_CB_OK;
    mnl_attr_parse_nested(attribute, TakeQueue, context);
    return MNL_CB_STOP;
}

} // namespace

std::optional<QueueLength> ReadQueueMessage(const nlmsghdr& message) {
    if (message.nlmsg_type != RTM_NEWQDISC || message.nlmsg_len < mnl_nlmsg_size(sizeof(tcmsg)))
        return std::nullopt;
    const auto* header = static_cast<const tcmsg*>(mnl_nlmsg_get_payload(&message));
    if (header->tcm_parent != TC_H_ROOT) return std::nullopt;
    QueueLength queue{static_cast<std::uint32_t>(header->tcm_ifindex), 0};
    mnl_attr_parse(&message, sizeof(tcmsg), TakeStatistics, &queue.Packets);
    return queue;
}

} // namespace korvalin
