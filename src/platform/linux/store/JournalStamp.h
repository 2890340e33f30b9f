#pragma once

#include <cstdint>
#include <string>

namespace korvalin {

/// Which Save a picture is from; no two Saves have the same.
struct JournalStamp {
    std::string Boot;             ///< the boot of the system in which it was saved
    std::uint64_t Id = 0;         ///< drawn by the writer when it opened the journal
    std::uint64_t Generation = 0; ///< counts the machine's Saves; 0 is none
};

} // namespace korvalin
