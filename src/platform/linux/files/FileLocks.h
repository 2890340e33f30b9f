#pragma once

#include "platform/InstanceLock.h"
#include "platform/RecordingLock.h"
#include "platform/linux/files/Descriptor.h"

#include <filesystem>
#include <string_view>

namespace korvalin {

/// A lock on a file of the settings folder, which the kernel frees when its owner ends, however that happens.
/// The file itself stays: removing it would let two processes hold locks on two files of the same name.
class FileInstanceLock : public InstanceLock {
  public:
    FileInstanceLock(const std::filesystem::path& folder, std::string_view executableName);

    bool PreviousInstanceRunning() override;
    bool IsRunning(const std::string& executableName) override;
    void SayReady() override;
    bool IsReady(const std::string& executableName) override;

  private:
    std::filesystem::path folder_;
    std::filesystem::path file_;
    Descriptor held_;
};

/// A lock on a file of the user's own in the data folder, which the kernel frees when its owner ends. One on
/// the folder itself could be held by everybody who can read it.
class FileRecordingLock : public RecordingLock {
  public:
    bool Take(const std::filesystem::path& folder) override;
    bool IsTaken(const std::filesystem::path& folder) override;

  private:
    Descriptor held_;
    std::filesystem::path folder_;
};

} // namespace korvalin
