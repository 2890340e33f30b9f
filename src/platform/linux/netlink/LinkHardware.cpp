#include "platform/linux/netlink/LinkHardware.h"

#include "platform/linux/netlink/RowFinder.h"

#include <system_error>

namespace korvalin {

void LinkHardware::Note(const InterfaceRow& row, const LinkDetails& details) {
    if (row.IsPort) ports_.push_back({row.Index, details.Master});
}

template <typename Row>
void LinkHardware::AskFolders(std::vector<Row>& rows) const {
    std::error_code error;
    for (Row& row : rows) {
        row.HasHardware = row.Type != IfTypeSoftwareLoopback &&
                          std::filesystem::exists(netFolder_ / row.Description / "device", error);
    }
}

template <typename Row>
void LinkHardware::Complete(std::vector<Row>& rows) const {
    // A kernel that names one device names all. Asking for folders takes longer than reading the messages.
    if (std::none_of(rows.begin(), rows.end(), [](const Row& row) { return row.HasHardware; }))
        AskFolders(rows);
    RowFinder finder(rows);
    for (const Port& port : ports_) {
        const Row* row = finder.Find(port.Index);
        Row* master = finder.Find(port.Master);
        if (row != nullptr && master != nullptr && row->HasHardware) master->HasHardware = true;
    }
}

template void LinkHardware::Complete(std::vector<InterfaceRow>& rows) const;
template void LinkHardware::Complete(std::vector<InterfaceEntry>& rows) const;

} // namespace korvalin
