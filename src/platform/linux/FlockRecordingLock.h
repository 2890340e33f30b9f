#pragma once

#include "platform/RecordingLock.h"
#include "platform/linux/Descriptor.h"

namespace korvalin {

/// A lock on the folder itself: it leaves no file behind, and the kernel frees it when its owner ends.
class FlockRecordingLock : public RecordingLock {
  public:
    bool Take(const std::filesystem::path& folder) override;
    bool IsTaken(const std::filesystem::path& folder) override;

  private:
    Descriptor held_;
    std::filesystem::path folder_;
};

} // namespace korvalin
