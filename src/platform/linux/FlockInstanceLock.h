#pragma once

#include "platform/InstanceLock.h"
#include "platform/linux/Descriptor.h"

#include <filesystem>

namespace korvalin {

/// A lock on a file, which the kernel frees when its owner ends in whatever way.
class FlockInstanceLock : public InstanceLock {
  public:
    explicit FlockInstanceLock(std::filesystem::path lockFile);

    bool PreviousInstanceRunning() override;

  private:
    std::filesystem::path lockFile_;
    Descriptor descriptor_;
};

} // namespace korvalin
