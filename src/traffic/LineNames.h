#pragma once

#include "platform/NetworkTables.h"
#include "traffic/LineRecord.h"

#include <map>
#include <string>
#include <vector>

namespace korvalin {

class Networks;
class Ras;

/// What adapters' lines are called: a wireless adapter's after its network, others after the adapter.
class LineNames {
  public:
    LineNames(Networks& networks, Ras& ras, const TrafficOptions& options)
        : networks_(networks), ras_(ras), options_(options) {}

    /// The name of an adapter's line. A network that is called like an adapter (of `rows`) or a phone-book
    /// entry gets its adapter behind it: "eth0 (wlan0)". That is decided when the adapter comes to the
    /// network.
    const std::string& NameOf(const InterfaceRow& row, const std::vector<InterfaceRow>& rows);

    /// An adapter went down: when it comes up it may be on another network. As long as it is up it is on the
    /// one that was told last, though nobody knows it while NetworkManager is started again.
    void NoteDown(std::uint32_t index);

    /// What the line of an adapter was called that is not there any more: nobody knows its network now.
    std::string NameOfRemoved(const InterfaceRow& row) const;

  private:
    void ForgetGone(const std::vector<InterfaceRow>& rows);
    bool IsTaken(const std::string& name, const std::vector<InterfaceRow>& rows);

    struct Named {
        std::string Adapter, Network, Name;
        bool WentDown = false; ///< since it was named
    };
    Networks& networks_;
    Ras& ras_;
    const TrafficOptions& options_;
    std::map<std::uint32_t, Named> named_; // by the interface's index
};

} // namespace korvalin
