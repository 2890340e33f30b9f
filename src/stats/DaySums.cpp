#include "stats/DaySums.h"

#include <algorithm>

namespace korvalin {

void DaySums::Begin(Date today) {
    oldest_ = today - DaysBack;
    days_.clear();
    connections_.clear();
}

void DaySums::Add(const BilledRecord& record, const std::string& lowerLine, std::size_t aliasIndex) {
    if (days_.size() < aliasIndex) days_.resize(aliasIndex);
    Days& days = days_[aliasIndex - 1];
    const Date day = DayOf(record.End);
    days.First = days.First == 0 ? day : std::min(days.First, day);
    if (day < oldest_) return;
    const BilledShare share = Bill(record, connections_[lowerLine], aliasIndex);
    DayUse& use = days.Uses[day];
    use.Volume += share.VolumeRounded;
    use.Online += share.DurationRounded;
}

BilledShare DaySums::Bill(const BilledRecord& record, BilledConnection& connection,
                          std::size_t aliasIndex) const {
    return korvalin::Bill(record, connection, DayOf(record.End), aliases_, aliasIndex);
}

DayUse DaySums::ShareOf(const BilledRecord& open, const std::string& lowerLine,
                        std::size_t aliasIndex) const {
    const auto last = connections_.find(lowerLine);
    BilledConnection connection = last != connections_.end() ? last->second : BilledConnection();
    const BilledShare share = Bill(open, connection, aliasIndex);
    return {share.VolumeRounded, share.DurationRounded};
}

const DaySums::Days* DaySums::Find(std::size_t aliasIndex) const {
    return aliasIndex <= days_.size() ? &days_[aliasIndex - 1] : nullptr;
}

DayUse DaySums::On(std::size_t aliasIndex, Date day) const {
    const Days* days = Find(aliasIndex);
    if (days == nullptr) return {};
    const auto found = days->Uses.find(day);
    return found != days->Uses.end() ? found->second : DayUse();
}

std::optional<DayUse> DaySums::MeanBefore(std::size_t aliasIndex, Date today) const {
    const Days* days = Find(aliasIndex);
    if (days == nullptr || days->First == 0 || days->First >= today) return std::nullopt;
    const Date first = std::max(days->First, today - DaysBack);
    DayUse sum;
    for (auto day = days->Uses.lower_bound(first); day != days->Uses.end() && day->first < today; ++day) {
        sum.Volume += day->second.Volume;
        sum.Online += day->second.Online;
    }
    const double count = today - first;
    return DayUse{sum.Volume / count, sum.Online / count};
}

} // namespace korvalin
