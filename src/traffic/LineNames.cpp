#include "traffic/LineNames.h"

#include "base/Text.h"
#include "platform/Networks.h"
#include "platform/Ras.h"

#include <algorithm>
#include <utility>

namespace korvalin {
namespace {

// A network may be called anything; the statistics hold UTF-8, and no quotes and no line breaks in a name.
std::string AsRecorded(std::string_view raw) {
    std::string name = DecodeLine(raw);
    for (char& c : name) {
        if (c == '"') c = '\'';
        if (c == '\r' || c == '\n') c = ' ';
    }
    return std::string(Trim(name));
}

} // namespace

const std::string& LineNames::NameOf(const InterfaceRow& row, const std::vector<InterfaceRow>& rows) {
    // Only hardware is on a network of the user's; asking for each of a thousand containers would cost.
    std::string network;
    if (options_.LanByNetwork && row.HasHardware) network = AsRecorded(networks_.NetworkOf(row.Description));
    if (named_.size() > rows.size()) ForgetGone(rows);
    Named& named = named_[row.Index];
    const bool stayedUp = !std::exchange(named.WentDown, false) && named.Adapter == row.Description;
    if (network.empty() && options_.LanByNetwork && stayedUp) network = named.Network;
    if (named.Adapter == row.Description && named.Network == network && !named.Name.empty())
        return named.Name;
    named = {row.Description, network, network.empty() ? AsRecorded(row.Description) : network};
    if (!network.empty() && IsTaken(network, rows)) named.Name += " (" + row.Description + ")";
    return named.Name;
}

void LineNames::NoteDown(std::uint32_t index) {
    const auto named = named_.find(index);
    if (named != named_.end()) named->second.WentDown = true;
}

std::string LineNames::NameOfRemoved(const InterfaceRow& row) const {
    const auto named = named_.find(row.Index);
    return named != named_.end() ? named->second.Name : AsRecorded(row.Description);
}

void LineNames::ForgetGone(const std::vector<InterfaceRow>& rows) {
    std::erase_if(named_, [&](const auto& named) {
        return std::none_of(rows.begin(), rows.end(),
                            [&](const InterfaceRow& row) { return row.Index == named.first; });
    });
}

bool LineNames::IsTaken(const std::string& name, const std::vector<InterfaceRow>& rows) {
    const auto isIt = [&](std::string_view other) { return EqualsNoCase(other, name); };
    if (std::any_of(rows.begin(), rows.end(), [&](const InterfaceRow& row) { return isIt(row.Description); }))
        return true;
    const std::vector<std::string> entries = ras_.EnumEntries().Names;
    return std::any_of(entries.begin(), entries.end(), isIt);
}

} // namespace korvalin
