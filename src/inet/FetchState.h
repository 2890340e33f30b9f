#pragma once

#include "base/Date.h"
#include "platform/TransferControl.h"

#include <cstdint>
#include <optional>
#include <string>

namespace korvalin {

/// Why a fetch failed, for who has to tell people.
enum class FetchFailure { None, Missing, TooLong, NotSaved, NoAnswer };

/// How the fetch of a page or file stands.
struct FetchState {
    /// Empty while all is well; "404", "404 Not Found", "NoData", or a code, ":" and a text.
    std::string Status;
    FetchFailure Failure = FetchFailure::None;
    std::string TargetFile;
    std::string PageText;
    bool ToFile = false;
    Date StartTime = 0;
    TransferState LastState = TransferState::None;
    /// Seconds awake at the last event or received chunk.
    double LastActivity = 0;
    std::string Url; ///< without its account
};

/// Told after every chunk.
struct FetchProgress {
    std::size_t ChunkSize = 0; ///< of the buffer, in bytes
    std::uint64_t Received = 0;
    /// As it travels, perhaps compressed; nullopt when nothing was announced.
    std::optional<std::uint64_t> Announced;
};

} // namespace korvalin
