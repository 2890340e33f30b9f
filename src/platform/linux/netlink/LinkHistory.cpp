#include "platform/linux/netlink/LinkHistory.h"

namespace korvalin {

void LinkHistory::BeginLook(std::uint32_t now) {
    ++look_;
    now_ = now;
}

void LinkHistory::Note(std::uint32_t index, OperationalStatus status, std::uint32_t carrierChanges) {
    const auto [found, isNew] = links_.try_emplace(index, Link{status, carrierChanges, 0, look_});
    Link& link = found->second;
    const bool changed = isNew || link.Status != status || link.CarrierChanges != carrierChanges;
    if (changed && looked_) link.Since = now_;
    link = {status, carrierChanges, link.Since, look_};
}

void LinkHistory::EndLook() {
    std::erase_if(links_, [this](const auto& entry) { return entry.second.Look != look_; });
    looked_ = true;
}

std::uint32_t LinkHistory::LastChange(std::uint32_t index) const {
    const auto found = links_.find(index);
    return found != links_.end() ? found->second.Since : 0;
}

} // namespace korvalin
