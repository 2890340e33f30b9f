#pragma once

#include <filesystem>

namespace korvalin {

/// One program at a time records into a data folder.
class RecordingLock {
  public:
    virtual ~RecordingLock() = default;

    /// Whether this process is the one that records into the folder. It becomes the one when there is none,
    /// and stays it until its end or until it asks for another folder. True also when the folder cannot be
    /// locked at all.
    [[nodiscard]] virtual bool Take(const std::filesystem::path& folder) = 0;

    /// Whether another process records into the folder.
    [[nodiscard]] virtual bool IsTaken(const std::filesystem::path& folder) = 0;
};

} // namespace korvalin
