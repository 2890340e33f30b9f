#pragma once

#include "platform/NetworkTables.h"

#include <cstdint>
#include <unordered_map>

namespace korvalin {

/// When each link entered its operational status, found by looking at all links again and again.
class LinkHistory {
  public:
    /// A look at all links begins at the moment `now`; one that was not ended does not count.
    void BeginLook(std::uint32_t now);

    /// What one link is like. Its count of carrier changes tells that it was away between two looks.
    void Note(std::uint32_t index, OperationalStatus status, std::uint32_t carrierChanges);

    /// All links have been noted: the others are gone.
    void EndLook();

    /// The moment of the look that saw the link in its status for the first time; 0 when that was the first
    /// look of all, and for a link that is not known.
    std::uint32_t LastChange(std::uint32_t index) const;

  private:
    struct Link {
        OperationalStatus Status;
        std::uint32_t CarrierChanges;
        std::uint32_t Since;
        std::uint64_t Look; ///< the last one that saw it
    };

    std::unordered_map<std::uint32_t, Link> links_; // by index
    std::uint64_t look_ = 0;
    std::uint32_t now_ = 0;
    bool looked_ = false; // once to the end
};

} // namespace korvalin
