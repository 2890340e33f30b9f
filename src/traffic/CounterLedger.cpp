#include "traffic/CounterLedger.h"

#include "base/Text.h"

#include <algorithm>

namespace korvalin {

void CounterLedger::Begin(const JournalFound& found) {
    accounts_.clear();
    closed_.clear();
    dialUps_.clear();
    pastIsNobodys_ = !found.KnowsMachine;
    lastEnds_ = found.Picture.LastEnds;
    if (!found.SameBoot) return; // the counters began again with the system
    for (const JournalEntry& entry : found.Picture.Entries) {
        accounts_[entry.Index] = {entry.Adapter, entry.Received, entry.Transmitted, entry.ReadAt};
        if (entry.Open && entry.Open->IsRas) dialUps_.push_back(entry);
    }
}

void CounterLedger::Meet(const std::vector<InterfaceRow>& rows, Date now) {
    for (const InterfaceRow& row : rows) {
        if (accounts_.contains(row.Index)) continue;
        if (pastIsNobodys_) {
            Count(row, now);
        } else {
            accounts_[row.Index] = BeginningOf(row, now);
        }
    }
    pastIsNobodys_ = false;
}

CounterLedger::Account CounterLedger::BeginningOf(const InterfaceRow& row, Date now) const {
    const auto closed = closed_.find(row.Index);
    const bool isBack = closed != closed_.end() && closed->second.Adapter == row.Description &&
                        closed->second.Received <= row.InOctets &&
                        closed->second.Transmitted <= row.OutOctets;
    return isBack ? closed->second : Account{row.Description, 0, 0, now};
}

void CounterLedger::Close(const InterfaceRow& removed) {
    constexpr std::size_t mostRemembered = 1000; // containers come and go all day
    if (closed_.size() >= mostRemembered) closed_.erase(closed_.begin());
    closed_[removed.Index] = {removed.Description, removed.InOctets, removed.OutOctets, 0};
    accounts_.erase(removed.Index);
}

CounterLedger::Account CounterLedger::Of(std::uint32_t index) const {
    const auto found = accounts_.find(index);
    return found == accounts_.end() ? Account() : found->second;
}

void CounterLedger::Count(const InterfaceRow& row, Date now) {
    accounts_[row.Index] = {row.Description, row.InOctets, row.OutOctets, now};
}

void CounterLedger::KeepOnly(const std::vector<InterfaceRow>& rows) {
    if (accounts_.size() == rows.size()) return; // every row has one
    std::erase_if(accounts_, [&](const auto& account) {
        return std::none_of(rows.begin(), rows.end(),
                            [&](const InterfaceRow& row) { return row.Index == account.first; });
    });
}

std::optional<JournalEntry> CounterLedger::TakeDialUp(std::uint32_t index, std::string_view lineName) {
    const auto found = std::find_if(dialUps_.begin(), dialUps_.end(), [&](const JournalEntry& entry) {
        return entry.Index == index && EqualsNoCase(entry.Open->LineName, lineName);
    });
    if (found == dialUps_.end()) return std::nullopt;
    JournalEntry entry = std::move(*found);
    dialUps_.erase(found);
    return entry;
}

void CounterLedger::BeginDialUpsOn(Date today) {
    for (JournalEntry& entry : dialUps_) {
        OpenConnection& open = *entry.Open;
        if (!open.Recorded || DayOf(open.End) == today) continue;
        open.LogIn = open.End = today;
        open.BytesReceived = open.BytesTransmitted = 0;
    }
}

Date CounterLedger::LastEnd(std::string_view lineName) const {
    const auto found = lastEnds_.find(ToLower(lineName));
    Date last = found == lastEnds_.end() ? 0 : found->second;
    for (const JournalEntry& entry : dialUps_) {
        if (EqualsNoCase(entry.Open->LineName, lineName)) last = std::max(last, entry.Open->End);
    }
    return last;
}

void CounterLedger::NoteEnd(std::string_view lineName, Date end) {
    Date& last = lastEnds_[ToLower(lineName)];
    last = std::max(last, end);
}

} // namespace korvalin
