#pragma once

#include "platform/DayCounts.h"

namespace korvalin {

/// The database that vnStat has kept since its version 2.
class VnstatDatabase : public DayCounts {
  public:
    /// Waits `busyMilliseconds` for a daemon that is writing.
    explicit VnstatDatabase(int busyMilliseconds = 5000) : busyMilliseconds_(busyMilliseconds) {}

    Reading Read(const std::filesystem::path& file) override;

  private:
    int busyMilliseconds_;
};

} // namespace korvalin
